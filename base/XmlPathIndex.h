// First-match path lookups in a document that no longer changes, without walking it: a block
// definition is read for several paths per member when its type is compiled, so it is indexed
// once, in one pass that costs little more than the walk it saves, and the lookups ask the
// index.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include <pugixml.hpp>

namespace zerbin::xml {

// The elements below one root by the hash of (parent name, name), in document order. It
// points into the tree: it must not outlive it, and the tree must not change once indexed.
class PathIndex {
public:
    // Indexes every element below root (root itself excluded) in one iterative pass, so that
    // any depth of nesting is fine.
    explicit PathIndex(pugi::xml_node root);

    // The same node as xml::FindFirst(root, slashPath) on the indexed tree.
    pugi::xml_node FindFirst(std::string_view slashPath) const;

    pugi::xml_node Root() const { return root_; }

private:
    static constexpr std::uint32_t kNone = UINT32_MAX;

    // Paths with more segments are answered by the walk.
    static constexpr std::size_t kMaxSegments = 16;

    // An element whose parent lies below the root; next is the following element, in
    // document order, whose names hash to the same key; depth counts from 0 for the root's
    // children.
    struct Entry {
        std::uint64_t key;
        pugi::xml_node node;
        std::uint32_t next;
        std::uint32_t depth;
    };

    // The slot of key in heads_: the one that holds it, or the empty one where it would go.
    std::size_t Slot(std::uint64_t key) const;

    pugi::xml_node root_;
    std::vector<Entry> entries_;
    // Open addressing over entries_: the first entry of each key, kNone where empty; at least
    // twice as many slots as entries, a power of two.
    std::vector<std::uint32_t> heads_;
};

// The index of a read-only document, built on the first call for that document and kept for
// as long as the document lives; nullptr for nullptr. Like the definition store it serves the
// host's one thread: nothing is locked.
std::shared_ptr<const PathIndex> IndexOf(const std::shared_ptr<const pugi::xml_document>& document);

// xml::FindFirst(root, slashPath), answered by the index of root's document when root is a
// document that IndexOf has indexed and that still lives; by the walk otherwise. The answer
// is the same either way.
pugi::xml_node FindFirstIndexed(pugi::xml_node root, std::string_view slashPath);

}  // namespace zerbin::xml
