#include "datatypes/SnvtDictionary.h"

#include <memory>
#include <string_view>
#include <unordered_map>

#include "base/MMain.h"
#include "base/ProcessState.h"
#include "base/Xml.h"

namespace zerbin {
namespace {

constexpr std::string_view kEntryPrefix = "SNVT_";
constexpr std::string_view kRootName = "SNVTS";

// The entries and their children of one dictionary document, first match in document order.
// Children are keyed "id/childName": neither an element name nor an indexed id holds "/".
struct SnvtIndex {
    std::weak_ptr<const pugi::xml_document> document;
    const pugi::xml_document* address = nullptr;
    std::unordered_map<std::string, pugi::xml_node> entries;
    std::unordered_map<std::string, pugi::xml_node> children;
    uint64_t generation = 0;
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

// The id of an entry element: the text after "SNVT_" of an element whose parent is "SNVTS".
bool EntryId(pugi::xml_node node, std::string_view& id) {
    if (node.type() != pugi::node_element || !IsElementNamed(node.parent(), kRootName)) {
        return false;
    }
    const std::string_view name = node.name();
    if (name.substr(0, kEntryPrefix.size()) != kEntryPrefix) {
        return false;
    }
    id = name.substr(kEntryPrefix.size());
    return true;
}

void Index(SnvtIndex& index, const pugi::xml_document& document) {
    // Document order, so try_emplace keeps the first match.
    for (pugi::xml_node node = document.first_child(); node;
         node = xml::NextInDocumentOrder(node, document)) {
        std::string_view id;
        if (EntryId(node, id)) {
            index.entries.try_emplace(std::string(id), node);
        } else if (node.type() == pugi::node_element && EntryId(node.parent(), id)) {
            std::string key(id);
            key += '/';
            key += node.name();
            index.children.try_emplace(std::move(key), node);
        }
    }
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
    const auto found = index->entries.find(id);
    return found == index->entries.end() ? pugi::xml_node{} : found->second;
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
    const auto found = index->children.find(id + "/" + childName);
    return found == index->children.end() ? pugi::xml_node{} : found->second;
}

uint64_t SnvtIndexGeneration() {
    const SnvtIndex* index = CurrentIndex();
    return index == nullptr ? 0 : index->generation;
}

void InvalidateSnvtIndex() {
    IndexSlot() = SnvtIndex{};
}

}  // namespace zerbin
