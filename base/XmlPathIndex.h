// First-match path lookups in a document that no longer changes, without walking it: block
// definitions are parsed once per type and then read for every block, several paths per
// member, so each of them is indexed once and the lookups ask the index.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <pugixml.hpp>

namespace zerbin::xml {

// The elements below one root by (parent name, name), in document order. It
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
    struct NamePair {
        std::string_view parent;
        std::string_view name;
        bool operator==(const NamePair&) const = default;
    };
    // Deliberately not noexcept: libstdc++ then keeps each key's hash in the table, and a
    // lookup compares hashes instead of hashing the names of every key in the bucket again.
    struct NamePairHash {
        std::size_t operator()(const NamePair& pair) const;
    };

    // True when the ancestors of node, nearest first, carry the segments of ancestors from its
    // last one backwards, all of them below the root.
    bool AncestorsMatch(pugi::xml_node node, std::string_view ancestors) const;

    pugi::xml_node Search(std::string_view slashPath) const;

    struct PathHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view path) const {
            return std::hash<std::string_view>{}(path);
        }
    };
    // A bound on the answers kept, whatever asks.
    static constexpr std::size_t kMaxAnswers = 4096;

    pugi::xml_node root_;
    std::unordered_map<NamePair, std::vector<pugi::xml_node>, NamePairHash> byParentAndName_;
    // Every block of a type asks the same paths of its definition: each is answered once.
    mutable std::unordered_map<std::string, pugi::xml_node, PathHash, std::equal_to<>> answers_;
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
