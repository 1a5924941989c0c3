// The message boxes of the studio and of its blocks: one sink for the process, which the
// component reaches through its message handler and the studio through ShowMessage.
#pragma once

#include <memory>
#include <string>

#include "zerbin/plugin.h"

namespace zerbin::studio {

enum class MessageIcon { None, Critical, Question, Exclamation, Information };
enum class MessageButtons { Ok, OkCancel, YesNo, YesNoCancel };

inline constexpr int kMessageOk = ZERBIN_ID_OK;
inline constexpr int kMessageCancel = ZERBIN_ID_CANCEL;
inline constexpr int kMessageYes = ZERBIN_ID_YES;
inline constexpr int kMessageNo = ZERBIN_ID_NO;

struct Message {
    std::string text;
    std::string title;
    MessageIcon icon = MessageIcon::None;
    MessageButtons buttons = MessageButtons::Ok;
};

// A box as the component describes it: a ZERBIN_MB_ style of buttons and icon.
Message MessageFromStyle(const char* text, const char* caption, int style);
// The ZERBIN_MB_ style of a box's buttons and icon.
int StyleOf(const Message& message);

class MessageSink {
public:
    virtual ~MessageSink() = default;
    // Shows the message and returns the answer (kMessageOk and so on).
    virtual int Show(const Message& message) = 0;
};

// The sink of the process; nullptr: messages go to stderr, answered as one who agrees would.
void SetMessageSink(std::shared_ptr<MessageSink> sink);

int ShowMessage(const std::string& text, const std::string& title,
                MessageIcon icon = MessageIcon::None, MessageButtons buttons = MessageButtons::Ok);

}  // namespace zerbin::studio
