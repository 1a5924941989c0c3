#include "base/ProcessState.h"

#include <gtest/gtest.h>

#include <memory>

#include <pugixml.hpp>

#include "base/MMain.h"

namespace zerbin {
namespace {

struct Counter {
    int value = 7;
};

TEST(ProcessStateTest, APartLivesUntilResetAndThenStartsAgain) {
    ProcessState::Get<Counter>().value = 1;
    EXPECT_EQ(ProcessState::Get<Counter>().value, 1);

    SetSnvtDictionary(std::make_shared<pugi::xml_document>());
    ProcessState::Reset();
    EXPECT_EQ(ProcessState::Get<Counter>().value, 7);
    EXPECT_EQ(DecimalSeparator(), ".");
    EXPECT_EQ(SnvtDictionary(), nullptr);
}

}  // namespace
}  // namespace zerbin
