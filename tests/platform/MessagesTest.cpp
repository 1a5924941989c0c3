#include "platform/Messages.h"

#include <gtest/gtest.h>

namespace zerbin {
namespace {

TEST(ShowMessage, DefaultsToTheComponentTitleAndAnOkButton) {
    ScopedMessageRecorder messages;
    EXPECT_EQ(ShowMessage("Type not found"), kMessageOk);
    ASSERT_EQ(messages.Messages().size(), 1U);
    const Message& shown = messages.Messages()[0];
    EXPECT_EQ(shown.text, "Type not found");
    EXPECT_EQ(shown.title, "Zerbin");
    EXPECT_EQ(shown.icon, MessageIcon::None);
    EXPECT_EQ(shown.buttons, MessageButtons::Ok);
}

TEST(ShowMessage, AnswersWithTheSinksButtonAndRestoresThePreviousSink) {
    ScopedMessageRecorder outer;
    {
        ScopedMessageRecorder inner(kMessageNo);
        EXPECT_EQ(ShowMessage("Save?", "Block", MessageIcon::Question, MessageButtons::YesNo),
                  kMessageNo);
        EXPECT_EQ(inner.Messages().at(0).icon, MessageIcon::Question);
    }
    ShowMessage("after");
    ASSERT_EQ(outer.Messages().size(), 1U);
    EXPECT_EQ(outer.Messages()[0].text, "after");
}

}  // namespace
}  // namespace zerbin
