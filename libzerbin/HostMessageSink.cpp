#include "libzerbin/HostMessageSink.h"

namespace zerbin::capi {

int MessageStyle(const Message& message) {
    int style = ZERBIN_MB_OK;
    switch (message.buttons) {
        case MessageButtons::OkCancel:
            style = ZERBIN_MB_OKCANCEL;
            break;
        case MessageButtons::YesNo:
            style = ZERBIN_MB_YESNO;
            break;
        case MessageButtons::YesNoCancel:
            style = ZERBIN_MB_YESNOCANCEL;
            break;
        case MessageButtons::Ok:
            break;
    }
    switch (message.icon) {
        case MessageIcon::Critical:
            return style | ZERBIN_MB_ICONCRITICAL;
        case MessageIcon::Question:
            return style | ZERBIN_MB_ICONQUESTION;
        case MessageIcon::Exclamation:
            return style | ZERBIN_MB_ICONEXCLAMATION;
        case MessageIcon::Information:
            return style | ZERBIN_MB_ICONINFORMATION;
        case MessageIcon::None:
            break;
    }
    return style;
}

Message MessageOfStyle(const char* text, const char* caption, int style) {
    Message message{text, caption, MessageIcon::None, MessageButtons::Ok};
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

}  // namespace zerbin::capi
