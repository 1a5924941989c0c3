#include "app_object/TypeStamp.h"

#include <cstdint>
#include <map>
#include <string_view>

#include "base/ProcessState.h"
#include "platform/Files.h"
#include "platform/LibraryManifest.h"

namespace zerbin {
namespace {

// FNV-1a over 64 bits: no library of its own, and stable across builds and machines.
class Hash {
public:
    void Add(std::string_view text) {
        for (const char c : text) {
            state_ = (state_ ^ static_cast<unsigned char>(c)) * 0x100000001b3ULL;
        }
        // A separator byte, so that "ab" + "c" does not hash as "a" + "bc".
        state_ = (state_ ^ 0xFFu) * 0x100000001b3ULL;
    }
    uint32_t Short() const { return static_cast<uint32_t>(state_ ^ (state_ >> 32)); }

private:
    uint64_t state_ = 0xcbf29ce484222325ULL;
};

}  // namespace

std::string DefinitionHash(const pugi::xml_document& definition) {
    Hash hash;
    // Walked without recursion: a definition may nest deeper than any call stack.
    pugi::xml_node node = definition.first_child();
    while (node) {
        const pugi::xml_node_type type = node.type();
        if (type == pugi::node_element || type == pugi::node_pcdata || type == pugi::node_cdata) {
            hash.Add(type == pugi::node_element ? "<" : "\"");
            hash.Add(node.name());
            hash.Add(node.value());
            for (pugi::xml_attribute attribute : node.attributes()) {
                hash.Add(attribute.name());
                hash.Add(attribute.value());
            }
        }
        if (pugi::xml_node child = node.first_child()) {
            node = child;
            continue;
        }
        while (node && !node.next_sibling()) {
            node = node.parent();
            // Leaving an element is part of the shape: <A><B/></A><C/> is not <A><B/><C/></A>.
            hash.Add(">");
        }
        if (node) {
            node = node.next_sibling();
        }
    }
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string text(8, '0');
    const uint32_t value = hash.Short();
    for (int i = 0; i < 8; ++i) {
        text[static_cast<std::size_t>(7 - i)] = kDigits[(value >> (4 * i)) & 0xF];
    }
    return text;
}

std::string CurrentTypeStamp(const std::string& type,
                             const std::shared_ptr<const pugi::xml_document>& definition) {
    if (!definition) {
        return {};
    }
    // Every block saved or loaded asks; a weak hold tells a document since replaced apart
    // from one that happens to lie at the same address.
    struct Known {
        std::weak_ptr<const pugi::xml_document> definition;
        std::string hash;
    };
    struct Hashes {
        std::map<std::string, Known> byType;
    };
    Known& known = ProcessState::Get<Hashes>().byType[type];
    if (known.definition.lock() != definition) {
        known.hash = DefinitionHash(*definition);
        known.definition = definition;
    }
    const std::string& version = LibraryVersion(LibraryFolder());
    return version.empty() ? known.hash : known.hash + "@" + version;
}

}  // namespace zerbin
