#include "studio/StudioMessages.h"

#include "studio/GuardedCall.h"

#include <cstdio>
#include <iostream>

namespace zerbin::studio {
namespace {

std::shared_ptr<MessageSink>& Installed() {
    static std::shared_ptr<MessageSink> sink;
    return sink;
}

}  // namespace

int StyleOf(const Message& message) {
    static constexpr int kButtons[] = {ZERBIN_MB_OK, ZERBIN_MB_OKCANCEL, ZERBIN_MB_YESNO,
                                       ZERBIN_MB_YESNOCANCEL};
    static constexpr int kIcons[] = {0, ZERBIN_MB_ICONCRITICAL, ZERBIN_MB_ICONQUESTION,
                                     ZERBIN_MB_ICONEXCLAMATION, ZERBIN_MB_ICONINFORMATION};
    return kButtons[static_cast<int>(message.buttons)] | kIcons[static_cast<int>(message.icon)];
}

Message MessageFromStyle(const char* text, const char* caption, int style) {
    Message message{text != nullptr ? text : "", caption != nullptr ? caption : "",
                    MessageIcon::None, MessageButtons::Ok};
    switch (style & ZERBIN_MB_BUTTONS) {
        case ZERBIN_MB_OKCANCEL:
            message.buttons = MessageButtons::OkCancel;
            break;
        case ZERBIN_MB_YESNO:
            message.buttons = MessageButtons::YesNo;
            break;
        case ZERBIN_MB_YESNOCANCEL:
            message.buttons = MessageButtons::YesNoCancel;
            break;
        default:
            break;
    }
    switch (style & ZERBIN_MB_ICONS) {
        case ZERBIN_MB_ICONCRITICAL:
            message.icon = MessageIcon::Critical;
            break;
        case ZERBIN_MB_ICONQUESTION:
            message.icon = MessageIcon::Question;
            break;
        case ZERBIN_MB_ICONEXCLAMATION:
            message.icon = MessageIcon::Exclamation;
            break;
        case ZERBIN_MB_ICONINFORMATION:
            message.icon = MessageIcon::Information;
            break;
        default:
            break;
    }
    return message;
}

void SetMessageSink(std::shared_ptr<MessageSink> sink) {
    Installed() = std::move(sink);
}

int ShowMessage(const std::string& text, const std::string& title, MessageIcon icon,
                MessageButtons buttons) {
    const Message message{text, title, icon, buttons};
    // Held for the call: the box may run events that install another sink.
    if (const std::shared_ptr<MessageSink> sink = Installed()) {
        return sink->Show(message);
    }
    std::cerr << title << ": " << text << '\n';
    const bool asks = buttons == MessageButtons::YesNo || buttons == MessageButtons::YesNoCancel;
    return asks ? kMessageYes : kMessageOk;
}

void ReportFailedCall(const std::string& what, const std::string& reason) noexcept {
    try {
        ShowMessage("Could not " + what + ": " + reason + ".", "Zerbin Studio",
                    MessageIcon::Critical);
    } catch (...) {
        // The log itself failed (no memory left): stderr is what remains.
        std::fputs("zerbin-studio: a call failed and could not be reported\n", stderr);
    }
}

}  // namespace zerbin::studio
