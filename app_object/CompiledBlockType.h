// A block type compiled once: the members that its definition, the dictionary and the
// block's settings make, kept without an owner, the layout figures, and the messages their
// making showed. Every later block of the same type under the same circumstances is made by
// copying these members instead of reading the definition again, and its host hears the
// same messages in the same order.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <pugixml.hpp>

#include "app_object/ImageSkeleton.h"
#include "platform/Messages.h"

namespace zerbin {

class CDBAttributes;
class CDBInputs;
class CDBOutputs;

// Everything a creation reads besides the definition's own text. The documents are told apart
// by identity: the compiled type holds the definition, and only a weak hold on the owner
// device document, which is the host's.
struct CompiledTypeKey {
    std::string type;
    std::string name;
    const void* definition = nullptr;
    const void* ownerDevice = nullptr;
    uint64_t dictionary = 0;
    std::string decimalSeparator;
    int unitSystem = 0;
    bool manageShortFloat = false;

    bool operator==(const CompiledTypeKey& other) const = default;
};

struct CompiledBlockType {
    std::shared_ptr<const pugi::xml_document> definition;
    std::weak_ptr<const pugi::xml_document> ownerDevice;
    // nullptr where the type has no member of that kind.
    std::shared_ptr<CDBAttributes> attributes;
    std::shared_ptr<CDBInputs> inputs;
    std::shared_ptr<CDBOutputs> outputs;
    std::vector<Message> messages;
    int32_t cdbDimension = 0;
    int32_t inputWidth = 0;
    int32_t baseWidth = 0;
    // A type selector's first value asks the block's host container about wires, so a block
    // that has a container at creation is made from its definition.
    bool hasTypeSelector = false;
    // Unit-dependent attributes get a second editor once their unit is known.
    bool hasUnitSelector = false;

    // The object ID as the image holds it, for the ID it was last worked out from: every block
    // of the type takes its ID from the same header, so one block works it out for all.
    struct ImageId {
        bool known = false;
        std::string id;
        std::string digits;
    };
    mutable ImageId imageId;

    // What a block of the type becomes when a project restores the value text in the selector
    // at index while each of the block's members is still the type's, keyed by both: made
    // from the first such block, so that every later one takes it instead of deriving.
    mutable std::map<std::pair<std::size_t, std::string>, std::shared_ptr<const CompiledBlockType>>
        variants;

    // The type's image in that byte order (Intel when intel), built at the first image of a
    // block of the type; nullptr where the type's members can't share one.
    const ImageSkeleton* Skeleton(bool intel) const;

private:
    // Filled once, on first use, in an object that is otherwise never changed once shared:
    // a type that is only placed, never imaged, does not pay for it.
    struct SkeletonSlot {
        bool built = false;
        std::optional<ImageSkeleton> skeleton;
    };
    mutable std::array<SkeletonSlot, 2> skeletons_;
};

// The compiled type for key, or nullptr; one whose owner device document has gone is dropped.
std::shared_ptr<const CompiledBlockType> FindCompiledType(const CompiledTypeKey& key);
void AddCompiledType(CompiledTypeKey key, std::shared_ptr<const CompiledBlockType> type);

}  // namespace zerbin
