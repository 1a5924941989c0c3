// How a member of a block writes into the block's image, set against the prototype member it
// was copied from: what lets a block image only the members it changed over a copy of its
// type's image.
#pragma once

#include <cstdint>

namespace zerbin {

// The digits [first, last) that a member may write in an image; empty when it writes none.
struct DigitRange {
    int64_t first = 0;
    int64_t last = 0;
};

enum class ImageChange {
    Same,       // writes exactly the prototype's digits
    SamePlace,  // writes other digits, within the prototype's range
    Other,      // may write elsewhere: the type's image does not hold for this block
};

}  // namespace zerbin
