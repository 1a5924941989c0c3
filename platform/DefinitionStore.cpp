#include "platform/DefinitionStore.h"

#include <utility>

#include "base/ProcessState.h"

namespace zerbin {

void DefinitionStore::AddDocument(std::shared_ptr<const pugi::xml_document> document,
                                  const std::string& typeName) {
    documents_[typeName] = Entry{std::move(document), nullptr};
}

void DefinitionStore::Clear() {
    documents_.clear();
    icons_.clear();
}

void DefinitionStore::AddIcon(std::shared_ptr<const Picture> icon, const std::string& typeName) {
    icons_[typeName] = std::move(icon);
}

std::shared_ptr<const pugi::xml_document> DefinitionStore::FindDocument(
    const std::string& typeName) const {
    const Entry* entry = FindEntry(typeName);
    return entry ? entry->document : nullptr;
}

std::shared_ptr<const Picture> DefinitionStore::FindIcon(const std::string& typeName) const {
    const auto it = icons_.find(typeName);
    return it == icons_.end() ? nullptr : it->second;
}

const DefinitionStore::Entry* DefinitionStore::FindEntry(const std::string& typeName) const {
    const auto it = documents_.find(typeName);
    return it == documents_.end() ? nullptr : &it->second;
}

void DefinitionStore::SetDerived(const std::string& typeName, const pugi::xml_document* document,
                                 std::shared_ptr<Derived> derived) {
    const auto it = documents_.find(typeName);
    if (it != documents_.end() && it->second.document.get() == document) {
        it->second.derived = std::move(derived);
    }
}

namespace {

struct SharedStore {
    std::shared_ptr<DefinitionStore> store = std::make_shared<DefinitionStore>();
};

}  // namespace

// The store lives for the process, past the last block: a type parsed once stays parsed.
DefinitionCache::DefinitionCache() : store_(ProcessState::Get<SharedStore>().store) {}

DefinitionStore& DefinitionCache::Shared() {
    return *ProcessState::Get<SharedStore>().store;
}

std::shared_ptr<DefinitionCache> DefinitionCache::ForBlocks() {
    // Apart from the store's part: made on first use, it asks that part for the store.
    struct SharedAccess {
        std::shared_ptr<DefinitionCache> cache;
    };
    std::shared_ptr<DefinitionCache>& cache = ProcessState::Get<SharedAccess>().cache;
    if (!cache) {
        cache = std::make_shared<DefinitionCache>();
    }
    return cache;
}

}  // namespace zerbin
