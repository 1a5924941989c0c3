// Whole-number arithmetic in the component's 32-bit width: a result outside it throws
// OverflowError and nothing is written, so a failed step leaves its target as it was.
#pragma once

#include <cstdint>
#include <limits>

#include "interfaces/Error.h"

namespace zerbin {

inline int32_t CheckedAdd(int32_t a, int32_t b) {
    int32_t result = 0;
    if (__builtin_add_overflow(a, b, &result)) {
        throw OverflowError();
    }
    return result;
}

inline int32_t CheckedSub(int32_t a, int32_t b) {
    int32_t result = 0;
    if (__builtin_sub_overflow(a, b, &result)) {
        throw OverflowError();
    }
    return result;
}

inline int32_t CheckedMul(int32_t a, int32_t b) {
    int32_t result = 0;
    if (__builtin_mul_overflow(a, b, &result)) {
        throw OverflowError();
    }
    return result;
}

inline int32_t CheckedInt32(int64_t value) {
    if (value < std::numeric_limits<int32_t>::min() ||
        value > std::numeric_limits<int32_t>::max()) {
        throw OverflowError();
    }
    return static_cast<int32_t>(value);
}

}  // namespace zerbin
