#include "base/XmlPathIndex.h"

#include <functional>
#include <utility>

#include "base/ProcessState.h"
#include "base/Xml.h"

namespace zerbin::xml {
namespace {

bool HasEmptySegment(std::string_view path) {
    return path.empty() || path.front() == '/' || path.back() == '/' ||
           path.find("//") != std::string_view::npos;
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

std::size_t PathIndex::NamePairHash::operator()(const NamePair& pair) const {
    const std::size_t parent = std::hash<std::string_view>{}(pair.parent);
    const std::size_t name = std::hash<std::string_view>{}(pair.name);
    return parent ^ (name + 0x9E3779B97F4A7C15ull + (parent << 6) + (parent >> 2));
}

PathIndex::PathIndex(pugi::xml_node root) : root_(root) {
    // Document order, as the plain search walks, so each list is in that order; pugixml's own
    // walk is iterative and takes no library call per step.
    struct Walker : pugi::xml_tree_walker {
        PathIndex* index;
        bool for_each(pugi::xml_node& node) override {
            if (node.type() == pugi::node_element) {
                index->byParentAndName_[NamePair{node.parent().name(), node.name()}].push_back(
                    node);
            }
            return true;
        }
    } walker;
    walker.index = this;
    root.traverse(walker);
}

bool PathIndex::AncestorsMatch(pugi::xml_node node, std::string_view ancestors) const {
    pugi::xml_node ancestor = node.parent();
    while (!ancestors.empty()) {
        const std::size_t slash = ancestors.rfind('/');
        const std::string_view segment =
            slash == std::string_view::npos ? ancestors : ancestors.substr(slash + 1);
        if (!ancestor || ancestor == root_ || segment != ancestor.name()) {
            return false;
        }
        ancestor = ancestor.parent();
        ancestors =
            slash == std::string_view::npos ? std::string_view{} : ancestors.substr(0, slash);
    }
    return true;
}

pugi::xml_node PathIndex::FindFirst(std::string_view slashPath) const {
    if (const auto known = answers_.find(slashPath); known != answers_.end()) {
        return known->second;
    }
    const pugi::xml_node found = Search(slashPath);
    if (answers_.size() < kMaxAnswers) {
        answers_.emplace(slashPath, found);
    }
    return found;
}

pugi::xml_node PathIndex::Search(std::string_view slashPath) const {
    if (!root_ || HasEmptySegment(slashPath)) {
        return {};
    }
    const std::size_t lastSlash = slashPath.rfind('/');
    if (lastSlash == std::string_view::npos) {
        // A bare name is asked only for the document element, which the walk meets first.
        return xml::FindFirst(root_, slashPath);
    }
    const std::string_view name = slashPath.substr(lastSlash + 1);
    const std::string_view ancestors = slashPath.substr(0, lastSlash);
    const std::size_t parentSlash = ancestors.rfind('/');
    const bool parentOnly = parentSlash == std::string_view::npos;
    const std::string_view parent = parentOnly ? ancestors : ancestors.substr(parentSlash + 1);
    const std::string_view aboveParent =
        parentOnly ? std::string_view{} : ancestors.substr(0, parentSlash);
    const auto found = byParentAndName_.find(NamePair{parent, name});
    if (found == byParentAndName_.end()) {
        return {};
    }
    // The key has matched the parent's name; what is left is that the parent lies below the
    // root, and the ancestors above it.
    for (const pugi::xml_node candidate : found->second) {
        const pugi::xml_node parentNode = candidate.parent();
        if (parentNode != root_ && AncestorsMatch(parentNode, aboveParent)) {
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
    auto& cache = Cache();
    const void* key = document->internal_object();
    if (const auto found = cache.find(key);
        found != cache.end() && !found->second.document.expired()) {
        return found->second.index;
    }
    // A new document is the moment to forget the ones that are gone.
    std::erase_if(cache, [](const auto& entry) { return entry.second.document.expired(); });
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
