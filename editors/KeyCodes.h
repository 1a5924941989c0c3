// The character of a key event as the value boxes filter it: Esc, Enter and Backspace by their
// codes, a printable character by its code point, and 0 for every other key (arrows, Delete,
// shortcuts with Ctrl or Alt), which the box handles as it always does.
#pragma once

#include <QKeyEvent>

namespace zerbin {

inline char32_t CharacterKey(const QKeyEvent& event) {
    switch (event.key()) {
        case Qt::Key_Escape:
            return 27;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return 13;
        case Qt::Key_Backspace:
            return 8;
        default:
            break;
    }
    if (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) {
        return 0;
    }
    const std::u32string text = event.text().toStdU32String();
    return text.size() == 1 && text.front() >= 0x20 && text.front() != 0x7F ? text.front() : 0;
}

}  // namespace zerbin
