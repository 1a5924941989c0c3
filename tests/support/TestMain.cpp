// The main of the engine's test programs: every test starts in a process as a host starts it,
// with no dictionary, library, unit system, message sink or cached definition left behind by
// the test before. A test may then use any type name and need not undo what it set.
#include <gtest/gtest.h>

#include "base/ProcessState.h"

namespace {

class FreshProcess : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo&) override { zerbin::ProcessState::Reset(); }
};

}  // namespace

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::UnitTest::GetInstance()->listeners().Append(new FreshProcess);
    return RUN_ALL_TESTS();
}
