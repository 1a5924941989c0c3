// The byte rewrite that turns an input's reference into its Intel form: the selector bits move
// from the top of the first byte to its bottom, and an ordinary reference's second byte is
// rotated too. Bytes are never swapped. Private to the connections folder.
#pragma once

#include <cstdint>
#include <string>

namespace zerbin::reference {

// Rotations of the 8 bits of a byte, left by three and by two places.
int32_t RotateLeftThree(int32_t byte);
int32_t RotateLeftTwo(int32_t byte);

// One or two hexadecimal digits, either case, as a number. Throws zerbin::Error for anything
// else, the empty text included.
int32_t ParseHexByte(const std::string& digits);

// The Intel form of a reference, as many digits as the rewrite gives (it is cut to the
// reference's width when written). Only the bytes that are rotated are parsed; the others
// are copied as they stand. Throws zerbin::Error when a rotated byte is not hexadecimal.
std::string IntelReference(const std::string& value, bool extended);

}  // namespace zerbin::reference
