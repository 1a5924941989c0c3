#include "base/XmlPathIndex.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/MMain.h"
#include "base/ProcessState.h"
#include "base/Xml.h"

namespace zerbin::xml {
namespace {

// A name's length and its first and last eight bytes: element names are short and differ
// there, and names that merely share a hash are told apart where they are compared.
std::uint64_t NameHash(std::string_view name) {
    const std::size_t size = name.size();
    std::uint64_t head = 0;
    std::uint64_t tail = 0;
    if (size >= sizeof head) {
        std::memcpy(&head, name.data(), sizeof head);
        std::memcpy(&tail, name.data() + size - sizeof tail, sizeof tail);
    } else {
        for (std::size_t i = 0; i < size; ++i) {
            head |= std::uint64_t{static_cast<unsigned char>(name[i])} << (8 * i);
        }
    }
    std::uint64_t hash = (head ^ (size * 0x9E3779B97F4A7C15ull)) * 0xBF58476D1CE4E5B9ull;
    hash = (hash ^ tail ^ (hash >> 31)) * 0x94D049BB133111EBull;
    return hash ^ (hash >> 29);
}

// Whether a name that pugixml holds is text, which holds no NUL: without measuring the name
// first, as most compared names differ early.
bool NameIs(const char* name, std::string_view text) {
    // text holds no NUL, so strncmp compares all of it unless name ends first, and name is
    // long enough to hold a byte after it when they match.
    return std::strncmp(name, text.data(), text.size()) == 0 && name[text.size()] == '\0';
}

std::uint64_t PairKey(std::uint64_t parent, std::uint64_t name) {
    return HashCombine(parent, name);
}

struct CachedIndex {
    std::weak_ptr<const pugi::xml_document> document;
    std::shared_ptr<const PathIndex> index;
};

// Keyed by the document's own node: that is what a caller holding only a pugi::xml_node of
// the document can name. An expired entry may share its key with a newer document that took
// the freed memory, so an entry counts only while its document lives.
struct IndexCache {
    std::unordered_map<const void*, CachedIndex> entries;
    // The size at which the entries of documents that are gone are next forgotten.
    std::size_t sweepAt = 16;
};

std::unordered_map<const void*, CachedIndex>& Cache() {
    return ProcessState::Get<IndexCache>().entries;
}

const PathIndex* LiveIndex(const void* key) {
    auto& cache = Cache();
    const auto found = cache.find(key);
    if (found == cache.end() || found->second.document.expired()) {
        return nullptr;
    }
    return found->second.index.get();
}

}  // namespace

PathIndex::PathIndex(pugi::xml_node root) : root_(root) {
    // pugixml's own walk: iterative, so any depth is fine, and it steps through the tree
    // without a library call per step. In document order, each element comes after its
    // parent and before the parent's next sibling, so the last name hashed one level up is
    // the parent's.
    struct Walker : pugi::xml_tree_walker {
        std::vector<Entry>* entries;
        std::vector<std::uint64_t> above;  // by depth, 0 for the root's children
        bool for_each(pugi::xml_node& node) override {
            if (node.type() != pugi::node_element) {
                return true;
            }
            const auto level = static_cast<std::size_t>(depth());
            const std::uint64_t hash = NameHash(node.name());
            // The root's children have the root for parent, which no path may name.
            if (level > 0) {
                entries->push_back(Entry{PairKey(above[level - 1], hash), node, kNone,
                                         static_cast<std::uint32_t>(level)});
            }
            if (above.size() <= level) {
                above.resize(level + 1);
            }
            above[level] = hash;
            return true;
        }
    } walker;
    walker.entries = &entries_;
    entries_.reserve(64);
    root.traverse(walker);

    std::size_t slots = 16;
    while (slots < entries_.size() * 2) {
        slots *= 2;
    }
    heads_.assign(slots, kNone);
    // Backwards, each entry put in front of its key's list, so that every list runs in
    // document order, the order in which the walk would meet them.
    for (std::size_t i = entries_.size(); i-- > 0;) {
        const std::size_t slot = Slot(entries_[i].key);
        entries_[i].next = heads_[slot];
        heads_[slot] = static_cast<std::uint32_t>(i);
    }
}

std::size_t PathIndex::Slot(std::uint64_t key) const {
    const std::size_t mask = heads_.size() - 1;
    std::size_t slot = static_cast<std::size_t>((key * 0x9E3779B97F4A7C15ull) >> 32) & mask;
    while (heads_[slot] != kNone && entries_[heads_[slot]].key != key) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

pugi::xml_node PathIndex::FindFirst(std::string_view slashPath) const {
    // No element's name holds a NUL, so no path that holds one finds anything.
    const char* const data = slashPath.data();
    if (!root_ || slashPath.empty() || std::memchr(data, '\0', slashPath.size()) != nullptr) {
        return {};
    }
    // The segments, last first, split in one pass that also finds an empty one.
    std::array<std::string_view, kMaxSegments> segments;
    std::size_t count = 0;
    std::size_t end = slashPath.size();
    while (const void* slash = memrchr(data, '/', end)) {
        const auto i = static_cast<std::size_t>(static_cast<const char*>(slash) - data);
        if (i + 1 == end) {
            return {};
        }
        if (count == kMaxSegments) {
            return xml::FindFirst(root_, slashPath);  // longer than any caller asks
        }
        segments[count++] = slashPath.substr(i + 1, end - i - 1);
        end = i;
    }
    if (end == 0) {
        return {};
    }
    if (count == 0) {
        // A bare name is asked only for the document element, which the walk meets first.
        return xml::FindFirst(root_, slashPath);
    }
    if (count == kMaxSegments) {
        return xml::FindFirst(root_, slashPath);
    }
    segments[count++] = slashPath.substr(0, end);

    const std::string_view name = segments[0];
    const std::string_view parent = segments[1];
    const std::uint64_t key = PairKey(NameHash(parent), NameHash(name));
    // Names that merely share the key's hash are told apart here.
    for (std::uint32_t i = heads_[Slot(key)]; i != kNone; i = entries_[i].next) {
        const Entry& entry = entries_[i];
        // Every segment names an element below the root: the entry and entry.depth above it.
        if (entry.depth + 1 < count) {
            continue;
        }
        const pugi::xml_node candidate = entry.node;
        pugi::xml_node ancestor = candidate.parent();
        if (!NameIs(candidate.name(), name) || !NameIs(ancestor.name(), parent)) {
            continue;
        }
        std::size_t matched = 2;
        for (; matched < count; ++matched) {
            ancestor = ancestor.parent();
            if (!NameIs(ancestor.name(), segments[matched])) {
                break;
            }
        }
        if (matched == count) {
            return candidate;
        }
    }
    return {};
}

std::shared_ptr<const PathIndex> IndexOf(
    const std::shared_ptr<const pugi::xml_document>& document) {
    if (!document) {
        return nullptr;
    }
    IndexCache& state = ProcessState::Get<IndexCache>();
    auto& cache = state.entries;
    const void* key = document->internal_object();
    if (const auto found = cache.find(key);
        found != cache.end() && !found->second.document.expired()) {
        return found->second.index;
    }
    // The ones that are gone are forgotten when the cache has doubled since the last sweep,
    // not at every new document: a process that places many types would otherwise pay for
    // all the types before at each new one.
    if (cache.size() >= state.sweepAt) {
        std::erase_if(cache, [](const auto& entry) { return entry.second.document.expired(); });
        state.sweepAt = std::max<std::size_t>(16, cache.size() * 2);
    }
    auto index = std::make_shared<const PathIndex>(*document);
    cache[key] = CachedIndex{document, index};
    return index;
}

pugi::xml_node FindFirstIndexed(pugi::xml_node root, std::string_view slashPath) {
    if (root.type() == pugi::node_document) {
        if (const PathIndex* index = LiveIndex(root.internal_object())) {
            return index->FindFirst(slashPath);
        }
    }
    return xml::FindFirst(root, slashPath);
}

}  // namespace zerbin::xml
