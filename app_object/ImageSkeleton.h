// The image of a block type in one byte order, with every member at the value the type gives
// it. A block of the type copies it and writes only the members it has changed: most blocks
// of a project keep most of their values, and encoding every value again was most of what an
// image cost.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace zerbin {

// The length byte and the two bytes of the object ID that open every image; members follow.
inline constexpr int32_t kImageHeaderBytes = 3;

class CDBAttributes;
class CDBInputs;

class ImageSkeleton {
public:
    // Appends to the header in image the zero fill up to dimension bytes and each member's
    // digits: inputs first, then attributes, so that the later writer wins where places
    // overlap. A member without a place (before the end of the header) writes nothing.
    // Neither the members nor their records change.
    static std::string WriteMembers(std::string image, int32_t dimension, const CDBInputs* inputs,
                                    const CDBAttributes* attributes, bool intel);

    // The image of these prototype members, or nullopt where their places overlap (a changed
    // member could not then be written by itself) or one of them cannot be written.
    static std::optional<ImageSkeleton> Build(int32_t dimension, const CDBInputs* inputs,
                                              const CDBAttributes* attributes, bool intel);

    // What WriteMembers would give for members copied from the prototypes the skeleton was
    // built from. False, with image as it was, where a member moved or may write elsewhere,
    // the counts differ, or the settings that encode values changed since the build.
    bool Write(std::string& image, int32_t dimension, const CDBInputs* inputs,
               const CDBAttributes* attributes, const CDBInputs* prototypeInputs,
               const CDBAttributes* prototypeAttributes) const;

private:
    std::string digits_;  // the whole image, under a header of zeros
    int32_t dimension_ = 0;
    bool intel_ = false;
    uint64_t dictionary_ = 0;
    std::string separator_;
};

}  // namespace zerbin
