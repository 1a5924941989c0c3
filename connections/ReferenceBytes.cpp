#include "connections/ReferenceBytes.h"

#include "base/MMain.h"
#include "interfaces/Error.h"

namespace zerbin::reference {

namespace {

// The selector of a reference that points at an output (what IDisplayItem_Reference makes):
// its second byte is an export index, which the Intel form leaves alone.
constexpr int32_t kOutputSelector = 2;

int32_t HexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    return -1;
}

}  // namespace

int32_t RotateLeftThree(int32_t byte) {
    return (byte & 0x1F) * 8 + byte / 32;
}

int32_t RotateLeftTwo(int32_t byte) {
    return (byte & 0x3F) * 4 + byte / 64;
}

int32_t ParseHexByte(const std::string& digits) {
    int32_t value = 0;
    for (const char c : digits) {
        const int32_t digit = HexDigit(c);
        if (digit < 0) {
            value = -1;
            break;
        }
        value = value * 16 + digit;
    }
    if (digits.empty() || digits.size() > 2 || value < 0) {
        throw Error("'" + digits + "' is not a hexadecimal byte", ErrorKind::NotANumber);
    }
    return value;
}

std::string IntelReference(const std::string& value, bool extended) {
    const int32_t first = ParseHexByte(value.substr(0, 2));
    const bool pointsAtOutput = first / 32 == kOutputSelector;
    const std::string second = value.size() > 2 ? value.substr(2, 2) : std::string();
    const std::string last = value.size() > 2 ? value.substr(value.size() - 2) : value;

    std::string rewritten = HexByteOf(RotateLeftThree(first));
    if (extended) {
        rewritten += pointsAtOutput ? second : HexByteOf(RotateLeftTwo(ParseHexByte(second)));
        rewritten += last;
    } else {
        rewritten += pointsAtOutput ? last : HexByteOf(RotateLeftTwo(ParseHexByte(last)));
    }
    return rewritten;
}

}  // namespace zerbin::reference
