// The message sink of a run, in process: what it prints and what it answers.
#include <gtest/gtest.h>

#include <sstream>

#include "cli/HostSession.h"

namespace zerbin::cli {
namespace {

TEST(StreamMessageSink, PrintsTitleAndTextWithPlainLineBreaksAndCounts) {
    std::ostringstream err;
    StreamMessageSink sink(err);
    EXPECT_EQ(sink.Show(Message{"Type selected (ID: 105), is not compatible.\r\nSelect another.",
                                "Warning: Incompatible type", MessageIcon::Information,
                                MessageButtons::Ok}),
              kMessageOk);
    EXPECT_EQ(sink.Show(Message{"one\rtwo\n", "Zerbin", MessageIcon::None, MessageButtons::Ok}),
              kMessageOk);
    EXPECT_EQ(err.str(),
              "Warning: Incompatible type: Type selected (ID: 105), is not compatible.\n"
              "Select another.\n"
              "Zerbin: one\ntwo\n\n");
    EXPECT_EQ(sink.Count(), 2);
}

TEST(StreamMessageSink, AnswersAQuestionAsAUserWhoAgrees) {
    std::ostringstream err;
    StreamMessageSink sink(err);
    EXPECT_EQ(sink.Show(Message{"Go on?", "Zerbin", MessageIcon::Question, MessageButtons::YesNo}),
              kMessageYes);
    EXPECT_EQ(
        sink.Show(Message{"Go on?", "Zerbin", MessageIcon::Question, MessageButtons::OkCancel}),
        kMessageOk);
}

}  // namespace
}  // namespace zerbin::cli
