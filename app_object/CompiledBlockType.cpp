#include "app_object/CompiledBlockType.h"

#include <cstddef>
#include <functional>
#include <unordered_map>
#include <utility>

#include "base/MMain.h"
#include "base/ProcessState.h"
#include "connections/CDBInputs.h"
#include "parameters/CDBAttributes.h"

namespace zerbin {
namespace {

// Hashed by what tells types apart cheaply: the definition's address nearly always does on its
// own, and the texts of the key are compared only with the one entry that matches.
struct CompiledTypeKeyHash {
    std::size_t operator()(const CompiledTypeKey& key) const {
        std::size_t hash = std::hash<const void*>{}(key.definition);
        hash = HashCombine(hash, std::hash<const void*>{}(key.ownerDevice));
        hash = HashCombine(hash, std::hash<uint64_t>{}(key.dictionary));
        return HashCombine(
            hash, static_cast<std::size_t>(key.unitSystem) * 2 + (key.manageShortFloat ? 1 : 0));
    }
};

struct CompiledTypes {
    std::unordered_map<CompiledTypeKey, std::shared_ptr<const CompiledBlockType>,
                       CompiledTypeKeyHash>
        types;
};

}  // namespace

const ImageSkeleton* CompiledBlockType::Skeleton(bool intel) const {
    SkeletonSlot& slot = skeletons_[intel ? 1 : 0];
    if (!slot.built) {
        slot.skeleton = ImageSkeleton::Build(cdbDimension, inputs.get(), attributes.get(), intel);
        slot.built = true;
    }
    return slot.skeleton ? &*slot.skeleton : nullptr;
}

std::shared_ptr<const CompiledBlockType> FindCompiledType(const CompiledTypeKey& key) {
    auto& types = ProcessState::Get<CompiledTypes>().types;
    const auto found = types.find(key);
    if (found == types.end()) {
        return nullptr;
    }
    // A document freed and another made at the same address must not pass for it.
    if (key.ownerDevice != nullptr && found->second->ownerDevice.expired()) {
        types.erase(found);
        return nullptr;
    }
    return found->second;
}

void AddCompiledType(CompiledTypeKey key, std::shared_ptr<const CompiledBlockType> type) {
    ProcessState::Get<CompiledTypes>().types.insert_or_assign(std::move(key), std::move(type));
}

}  // namespace zerbin
