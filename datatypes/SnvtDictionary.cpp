#include "datatypes/SnvtDictionary.h"

#include <algorithm>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "base/MMain.h"
#include "base/ProcessState.h"
#include "base/Xml.h"

namespace zerbin {
namespace {

constexpr std::string_view kEntryPrefix = "SNVT_";
constexpr std::string_view kRootName = "SNVTS";

// The entries of one dictionary document by id, each id's entries in document order: a child
// is looked for in them in turn, so that the first match in document order wins, as a search
// of the whole tree finds it. The ids are views of the document's own names, which live as
// long as the document the index is checked against at every use.
struct SnvtIndex {
    std::weak_ptr<const pugi::xml_document> document;
    const pugi::xml_document* address = nullptr;
    struct Entry {
        std::string_view id;
        pugi::xml_node node;
    };
    static bool ById(const Entry& a, const Entry& b) { return a.id < b.id; }
    std::vector<Entry> entries;  // sorted ById, stably
    uint64_t generation = 0;

    // The entries with the id, in document order.
    std::span<const Entry> Find(std::string_view id) const {
        const auto [first, last] =
            std::equal_range(entries.begin(), entries.end(), Entry{id, {}}, ById);
        return {first, last};
    }
};

struct DictionaryIndex {
    SnvtIndex index;
    uint64_t lastGeneration = 0;
};

uint64_t& LastGeneration() {
    return ProcessState::Get<DictionaryIndex>().lastGeneration;
}

bool IsElementNamed(pugi::xml_node node, std::string_view name) {
    return node.type() == pugi::node_element && name == node.name();
}

// Every element named "SNVT_" and an id under an element named "SNVTS", wherever that stands,
// in document order.
void Index(SnvtIndex& index, const pugi::xml_document& document) {
    for (pugi::xml_node node = document.first_child(); node;
         node = xml::NextInDocumentOrder(node, document)) {
        if (node.type() != pugi::node_element) {
            continue;
        }
        const std::string_view name = node.name();
        if (name.starts_with(kEntryPrefix) && IsElementNamed(node.parent(), kRootName)) {
            index.entries.push_back({name.substr(kEntryPrefix.size()), node});
        }
    }
    std::stable_sort(index.entries.begin(), index.entries.end(), SnvtIndex::ById);
}

SnvtIndex& IndexSlot() {
    return ProcessState::Get<DictionaryIndex>().index;
}

// The index of the dictionary installed now, built on first use after a change.
const SnvtIndex* CurrentIndex() {
    const pugi::xml_document* installed = SnvtDictionaryAddress();
    if (installed == nullptr) {
        return nullptr;
    }
    SnvtIndex& index = IndexSlot();
    // The address alone could be a new document's in a freed one's place; the freed one's
    // index then holds an expired pointer.
    if (index.address != installed || index.document.expired()) {
        index = SnvtIndex{};
        index.document = SnvtDictionary();
        index.address = installed;
        index.generation = ++LastGeneration();
        Index(index, *installed);
    }
    return &index;
}

bool HasSlash(const std::string& text) {
    return text.find('/') != std::string::npos;
}

}  // namespace

pugi::xml_node FindSnvtEntry(const std::string& id) {
    const SnvtIndex* index = CurrentIndex();
    if (index == nullptr) {
        return {};
    }
    if (HasSlash(id)) {
        // The id then reaches into the path itself ("105/NAME"); only a search answers that.
        return xml::FindFirst(*SnvtDictionary(), std::string(kRootName) + "/SNVT_" + id);
    }
    const auto found = index->Find(id);
    return found.empty() ? pugi::xml_node{} : found.front().node;
}

pugi::xml_node FindSnvtChild(const std::string& id, const std::string& childName) {
    const SnvtIndex* index = CurrentIndex();
    if (index == nullptr) {
        return {};
    }
    if (HasSlash(id) || HasSlash(childName) || childName.empty()) {
        return xml::FindFirst(*SnvtDictionary(),
                              std::string(kRootName) + "/SNVT_" + id + "/" + childName);
    }
    for (const SnvtIndex::Entry& entry : index->Find(id)) {
        for (pugi::xml_node child = entry.node.first_child(); child; child = child.next_sibling()) {
            if (IsElementNamed(child, childName)) {
                return child;
            }
        }
    }
    return {};
}

uint64_t SnvtIndexGeneration() {
    const SnvtIndex* index = CurrentIndex();
    return index == nullptr ? 0 : index->generation;
}

void InvalidateSnvtIndex() {
    IndexSlot() = SnvtIndex{};
}

}  // namespace zerbin
