// The message box port. Every message of the component goes through ShowMessage; a windowed
// host installs a sink that opens a real box, the headless default writes to stderr, and
// tests install a recorder.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace zerbin {

enum class MessageIcon { None, Critical, Question, Exclamation, Information };
enum class MessageButtons { Ok, OkCancel, YesNo, YesNoCancel };

// The title of a message box for which no title is named.
inline constexpr const char* kDefaultTitle = "Zerbin";

// What the user clicked, by the host's numbering.
inline constexpr int kMessageOk = 1;
inline constexpr int kMessageCancel = 2;
inline constexpr int kMessageYes = 6;
inline constexpr int kMessageNo = 7;

struct Message {
    std::string text;
    std::string title;
    MessageIcon icon = MessageIcon::None;
    MessageButtons buttons = MessageButtons::Ok;
};

class MessageSink {
public:
    virtual ~MessageSink() = default;
    // Shows the message and returns the button clicked (kMessageOk and so on).
    virtual int Show(const Message& message) = 0;
};

// Shows a message through the installed sink and returns its answer.
int ShowMessage(const std::string& text, const std::string& title = kDefaultTitle,
                MessageIcon icon = MessageIcon::None, MessageButtons buttons = MessageButtons::Ok);

// Installs a sink for the process; nullptr restores the default, which prints
// "TITLE: TEXT" to stderr and answers OK (Yes for a Yes/No box).
void SetMessageSink(std::shared_ptr<MessageSink> sink);
// The sink in force; never nullptr.
std::shared_ptr<MessageSink> CurrentMessageSink();

// Keeps a copy of every message shown while it lives, the sink showing it all the same: what
// the creation of a block type told the user, to be told again for each block made from it.
// Captures nest; each one in force keeps the message.
class ScopedMessageCapture {
public:
    ScopedMessageCapture();
    ~ScopedMessageCapture();
    ScopedMessageCapture(const ScopedMessageCapture&) = delete;
    ScopedMessageCapture& operator=(const ScopedMessageCapture&) = delete;

    const std::vector<Message>& Messages() const { return messages_; }
    // Hands the messages kept so far to the caller.
    std::vector<Message> Take() { return std::move(messages_); }

private:
    friend int ShowMessage(const std::string&, const std::string&, MessageIcon, MessageButtons);
    std::vector<Message> messages_;
    ScopedMessageCapture* outer_;
};

// Keeps every message shown and answers with a fixed button.
class MessageRecorder : public MessageSink {
public:
    explicit MessageRecorder(int answer = kMessageOk) : answer_(answer) {}
    int Show(const Message& message) override;

    const std::vector<Message>& Messages() const { return messages_; }
    void Clear() { messages_.clear(); }
    void Answer(int answer) { answer_ = answer; }

private:
    std::vector<Message> messages_;
    int answer_;
};

// Installs a MessageRecorder for its lifetime and then puts the previous sink back.
class ScopedMessageRecorder {
public:
    explicit ScopedMessageRecorder(int answer = kMessageOk);
    ~ScopedMessageRecorder();
    ScopedMessageRecorder(const ScopedMessageRecorder&) = delete;
    ScopedMessageRecorder& operator=(const ScopedMessageRecorder&) = delete;

    MessageRecorder& recorder() { return *recorder_; }
    const std::vector<Message>& Messages() const { return recorder_->Messages(); }

private:
    std::shared_ptr<MessageRecorder> recorder_;
    std::shared_ptr<MessageSink> previous_;
};

}  // namespace zerbin
