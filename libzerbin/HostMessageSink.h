// The host's message handler behind the engine's message port, for the C interface and the
// plug-in alike: the style numbers a C host understands, the answer numbers the same on both
// sides.
#pragma once

#include "platform/Messages.h"
#include "zerbin/zerbin.h"

namespace zerbin::capi {

// ZERBIN_MB_* of a message: its button set and its icon.
int MessageStyle(const Message& message);
// The message a style describes: what a host asks the component to show.
Message MessageOfStyle(const char* text, const char* caption, int style);

class HostMessageSink : public MessageSink {
public:
    HostMessageSink(ZerbinMessageHandler handler, void* context)
        : handler_(handler), context_(context) {}
    int Show(const Message& message) override {
        return handler_(context_, message.text.c_str(), message.title.c_str(),
                        MessageStyle(message));
    }

private:
    ZerbinMessageHandler handler_;
    void* context_;
};

}  // namespace zerbin::capi
