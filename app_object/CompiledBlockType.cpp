#include "app_object/CompiledBlockType.h"

#include <map>
#include <tuple>
#include <utility>

#include "base/ProcessState.h"
#include "connections/CDBInputs.h"
#include "parameters/CDBAttributes.h"

namespace zerbin {
namespace {

struct CompiledTypes {
    std::map<CompiledTypeKey, std::shared_ptr<const CompiledBlockType>> types;
};

}  // namespace

bool CompiledTypeKey::operator<(const CompiledTypeKey& other) const {
    // The definition first: it nearly always tells two types apart at the cost of comparing
    // two addresses, where the type names would be compared as text on every step of the
    // search that every block makes.
    return std::tie(definition, ownerDevice, dictionary, unitSystem, manageShortFloat, type, name,
                    decimalSeparator) <
           std::tie(other.definition, other.ownerDevice, other.dictionary, other.unitSystem,
                    other.manageShortFloat, other.type, other.name, other.decimalSeparator);
}

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
