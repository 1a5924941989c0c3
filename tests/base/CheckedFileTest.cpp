#include "base/CheckedFile.h"

#include <gtest/gtest.h>

#include <string>

#include "interfaces/Error.h"

namespace zerbin {
namespace {

// A file whose size says 0 but that holds text is a file that grew after its size was taken:
// all of it is read, up to the limit.
TEST(ReadRegularFile, ReadsAFileThatHoldsMoreThanItsSizeSaidUpToTheLimit) {
    const FileBytes status = ReadRegularFile("/proc/self/status", 1 << 20);
    const std::string text(status.Data(), status.Size());
    EXPECT_EQ(text.rfind("Name:", 0), 0U) << text;
    EXPECT_NE(text.find("Pid:"), std::string::npos);
    EXPECT_EQ(status.Data()[status.Size()], '\0');
    try {
        ReadRegularFile("/proc/self/status", 8);
        FAIL() << "read past the limit";
    } catch (const IoError& error) {
        EXPECT_EQ(error.Reason(), "file too large");
    }
}

}  // namespace
}  // namespace zerbin
