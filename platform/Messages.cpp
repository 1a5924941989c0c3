#include "platform/Messages.h"

#include <iostream>
#include <utility>

#include "base/ProcessState.h"

namespace zerbin {
namespace {

class StderrSink : public MessageSink {
public:
    int Show(const Message& message) override {
        std::cerr << message.title << ": " << message.text << '\n';
        // With nobody to ask, go on as a user who agrees would.
        switch (message.buttons) {
            case MessageButtons::YesNo:
            case MessageButtons::YesNoCancel:
                return kMessageYes;
            case MessageButtons::Ok:
            case MessageButtons::OkCancel:
                break;
        }
        return kMessageOk;
    }
};

struct InstalledSink {
    std::shared_ptr<MessageSink> sink = std::make_shared<StderrSink>();
};

std::shared_ptr<MessageSink>& SinkSlot() {
    return ProcessState::Get<InstalledSink>().sink;
}

// The innermost capture in force; each one links to the one it was opened in.
ScopedMessageCapture* innermostCapture = nullptr;

}  // namespace

int ShowMessage(const std::string& text, const std::string& title, MessageIcon icon,
                MessageButtons buttons) {
    Message message{text, title, icon, buttons};
    for (ScopedMessageCapture* capture = innermostCapture; capture != nullptr;
         capture = capture->outer_) {
        capture->messages_.push_back(message);
    }
    // Hold the sink for the call: showing may run code that installs another one.
    const std::shared_ptr<MessageSink> sink = SinkSlot();
    return sink->Show(message);
}

ScopedMessageCapture::ScopedMessageCapture() : outer_(innermostCapture) {
    innermostCapture = this;
}

ScopedMessageCapture::~ScopedMessageCapture() {
    innermostCapture = outer_;
}

void SetMessageSink(std::shared_ptr<MessageSink> sink) {
    SinkSlot() = sink ? std::move(sink) : std::make_shared<StderrSink>();
}

std::shared_ptr<MessageSink> CurrentMessageSink() {
    return SinkSlot();
}

int MessageRecorder::Show(const Message& message) {
    messages_.push_back(message);
    return answer_;
}

ScopedMessageRecorder::ScopedMessageRecorder(int answer)
    : recorder_(std::make_shared<MessageRecorder>(answer)), previous_(CurrentMessageSink()) {
    SetMessageSink(recorder_);
}

ScopedMessageRecorder::~ScopedMessageRecorder() {
    SetMessageSink(previous_);
}

}  // namespace zerbin
