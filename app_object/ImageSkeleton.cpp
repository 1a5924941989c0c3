#include "app_object/ImageSkeleton.h"

#include <algorithm>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "base/MMain.h"
#include "connections/CDBInput.h"
#include "connections/CDBInputs.h"
#include "datatypes/ImageDigits.h"
#include "datatypes/SnvtDictionary.h"
#include "parameters/CDBAttribute.h"
#include "parameters/CDBAttributes.h"

namespace zerbin {
namespace {

constexpr std::size_t kHeaderDigits = 2 * kImageHeaderBytes;

template <class Member>
const std::vector<std::shared_ptr<Member>>& MembersOf(const auto* collection) {
    static const std::vector<std::shared_ptr<Member>> none;
    return collection ? collection->Members() : none;
}

// As they stand: a member the block has not reached is the type's, the same by identity, and
// the compare need not copy it.
template <class Member>
const std::vector<std::shared_ptr<Member>>& StandingOf(const auto* collection) {
    static const std::vector<std::shared_ptr<Member>> none;
    return collection ? collection->AsTheyStand() : none;
}

bool HasPlace(CDBInput& input) {
    return input.IInput_CDBPosition() >= kImageHeaderBytes;
}

bool HasPlace(CDBAttribute& attribute) {
    return attribute.IAttribute_CDBPosition() >= kImageHeaderBytes;
}

std::string Written(CDBInput& input, std::string image, bool intel) {
    return intel ? input.WriteIntelStream(std::move(image)) : input.WriteStream(std::move(image));
}

std::string Written(CDBAttribute& attribute, std::string image, bool intel) {
    return intel ? attribute.WriteIntelStream(std::move(image))
                 : attribute.WriteStream(std::move(image));
}

DigitRange RangeOf(const CDBInput& input, bool) {
    return input.ImageRange();
}

DigitRange RangeOf(const CDBAttribute& attribute, bool intel) {
    return attribute.ImageRange(intel);
}

// The value a member the block has not reached holds in place of the type's; inputs have none.
const std::string* UnreachedValue(const CDBInputs*, std::size_t) {
    return nullptr;
}

const std::string* UnreachedValue(const CDBAttributes* attributes, std::size_t index) {
    return attributes ? attributes->UnreachedValue(index) : nullptr;
}

std::string Written(const CDBInput&, const std::string&, std::string image, bool) {
    return image;
}

std::string Written(const CDBAttribute& attribute, const std::string& value, std::string image,
                    bool intel) {
    return attribute.WriteValueImage(std::move(image), value, intel);
}

// How a member writes against its prototype, a value kept beside an unreached one counted.
template <class Member, class Collection>
ImageChange ChangeOf(const Collection* collection, std::size_t index, const Member& member,
                     const Member& prototype) {
    if (UnreachedValue(collection, index) != nullptr) {
        return ImageChange::SamePlace;  // the prototype itself, with a value of its own
    }
    return member.ImageChangeFrom(prototype);
}

// Whether every member has one of the prototypes' places (true), and whether any has other
// digits there (rewrite).
template <class Member, class Collection>
bool Comparable(const Collection* collection, const std::vector<std::shared_ptr<Member>>& members,
                const std::vector<std::shared_ptr<Member>>& prototypes, bool& rewrite) {
    if (members.size() != prototypes.size()) {
        return false;
    }
    for (std::size_t i = 0; i < members.size(); ++i) {
        switch (ChangeOf(collection, i, *members[i], *prototypes[i])) {
            case ImageChange::Same:
                break;
            case ImageChange::SamePlace:
                rewrite = true;
                break;
            case ImageChange::Other:
                return false;
        }
    }
    return true;
}

// Back to the zero fill, then the member's digits: what the plain writing leaves there, as no
// other member writes in its range.
template <class Member, class Collection>
void Rewrite(std::string& image, const Collection* collection,
             const std::vector<std::shared_ptr<Member>>& members,
             const std::vector<std::shared_ptr<Member>>& prototypes, bool intel) {
    for (std::size_t i = 0; i < members.size(); ++i) {
        Member& member = *members[i];
        if (!HasPlace(member) ||
            ChangeOf(collection, i, member, *prototypes[i]) != ImageChange::SamePlace) {
            continue;
        }
        const DigitRange range = RangeOf(member, intel);
        const auto size = static_cast<int64_t>(image.size());
        const int64_t first = std::clamp<int64_t>(range.first, 0, size);
        const int64_t last = std::clamp<int64_t>(range.last, first, size);
        std::fill(image.begin() + first, image.begin() + last, '0');
        const std::string* value = UnreachedValue(collection, i);
        image = value != nullptr ? Written(member, *value, std::move(image), intel)
                                 : Written(member, std::move(image), intel);
    }
}

}  // namespace

std::string ImageSkeleton::WriteMembers(std::string image, int32_t dimension,
                                        const CDBInputs* inputs, const CDBAttributes* attributes,
                                        bool intel) {
    for (int32_t offset = 4; offset <= dimension; ++offset) {
        image += "00";
    }
    for (const auto& input : MembersOf<CDBInput>(inputs)) {
        if (HasPlace(*input)) {
            image = Written(*input, std::move(image), intel);
        }
    }
    for (const auto& attribute : MembersOf<CDBAttribute>(attributes)) {
        if (HasPlace(*attribute)) {
            image = Written(*attribute, std::move(image), intel);
        }
    }
    return image;
}

std::optional<ImageSkeleton> ImageSkeleton::Build(int32_t dimension, const CDBInputs* inputs,
                                                  const CDBAttributes* attributes, bool intel) {
    ImageSkeleton skeleton;
    std::vector<DigitRange> ranges;
    try {
        skeleton.digits_ =
            WriteMembers(std::string(kHeaderDigits, '0'), dimension, inputs, attributes, intel);
        const auto add = [&](const auto& members) {
            for (const auto& member : members) {
                if (HasPlace(*member)) {
                    ranges.push_back(RangeOf(*member, intel));
                }
            }
        };
        add(MembersOf<CDBInput>(inputs));
        add(MembersOf<CDBAttribute>(attributes));
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        return std::nullopt;  // the plain writing tells the user, block by block
    }
    std::erase_if(ranges, [](const DigitRange& range) { return range.first >= range.last; });
    std::sort(ranges.begin(), ranges.end(),
              [](const DigitRange& a, const DigitRange& b) { return a.first < b.first; });
    for (std::size_t i = 1; i < ranges.size(); ++i) {
        if (ranges[i].first < ranges[i - 1].last) {
            return std::nullopt;
        }
    }
    skeleton.dimension_ = dimension;
    skeleton.intel_ = intel;
    skeleton.dictionary_ = SnvtIndexGeneration();
    skeleton.separator_ = DecimalSeparator();
    return skeleton;
}

bool ImageSkeleton::Write(std::string& image, int32_t dimension, const CDBInputs* inputs,
                          const CDBAttributes* attributes, const CDBInputs* prototypeInputs,
                          const CDBAttributes* prototypeAttributes) const {
    if (image.size() != kHeaderDigits || dimension != dimension_ ||
        SnvtIndexGeneration() != dictionary_ || DecimalSeparator() != separator_) {
        return false;
    }
    const auto& ownInputs = StandingOf<CDBInput>(inputs);
    const auto& ownAttributes = StandingOf<CDBAttribute>(attributes);
    const auto& inputPrototypes = MembersOf<CDBInput>(prototypeInputs);
    const auto& attributePrototypes = MembersOf<CDBAttribute>(prototypeAttributes);
    bool rewrite = false;
    if (!Comparable(inputs, ownInputs, inputPrototypes, rewrite) ||
        !Comparable(attributes, ownAttributes, attributePrototypes, rewrite)) {
        return false;
    }
    image.append(digits_, kHeaderDigits);
    if (rewrite) {
        Rewrite(image, inputs, ownInputs, inputPrototypes, intel_);
        Rewrite(image, attributes, ownAttributes, attributePrototypes, intel_);
    }
    return true;
}

}  // namespace zerbin
