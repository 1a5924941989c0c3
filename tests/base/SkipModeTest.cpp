#include "base/SkipMode.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

namespace zerbin {
namespace {

// A failing step is dropped; running out of memory and a file that cannot be read are not
// failing steps but failures the user must hear of.
TEST(SkipStep, DropsFailuresButNotOutOfMemoryOrUnreadableFiles) {
    EXPECT_TRUE(SkipStep([] {}));
    EXPECT_FALSE(SkipStep([] { throw Error("step failed"); }));
    EXPECT_FALSE(SkipStep([] { throw std::runtime_error("anything else"); }));
    EXPECT_THROW(SkipStep([] { throw std::bad_alloc(); }), std::bad_alloc);
    EXPECT_THROW(SkipStep([] { throw IoError("T.xml", "input/output error", 5); }), IoError);
}

}  // namespace
}  // namespace zerbin
