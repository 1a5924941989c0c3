// Every message box of the component and of the studio passes here: the log keeps each one
// with its time and the block it concerns, and shows it as a box unless the studio asked for
// the log alone (while a project loads, when the user chose so).
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <QDateTime>
#include <QDockWidget>
#include <QString>

#include "studio/StudioMessages.h"

class QTableWidget;

namespace zerbin::studio {

struct LoggedMessage {
    QDateTime time;
    QString block;
    Message message;
};

class MessageLog : public MessageSink {
public:
    // Shows a box and returns the button clicked.
    using Presenter = std::function<int(const Message&)>;

    int Show(const Message& message) override;
    // Kept in the log and never shown as a box: what the user did not wait for (a refused
    // wire) must not take the keys typed meanwhile.
    void Note(const Message& message);

    // The block messages are about from now on; empty for none.
    void SetBlock(const QString& block) { block_ = block; }
    // While quiet, messages go to the log alone and are answered as a user who agrees would.
    void SetQuiet(bool quiet) { quiet_ = quiet; }
    void SetPresenter(Presenter presenter) { presenter_ = std::move(presenter); }
    void SetListener(std::function<void(const LoggedMessage&)> listener) {
        listener_ = std::move(listener);
    }
    const std::vector<LoggedMessage>& Messages() const { return messages_; }
    void Clear() { messages_.clear(); }

    // The component's own box with the message's title, icon and buttons.
    static int ShowBox(const Message& message);

private:
    std::vector<LoggedMessage> messages_;
    QString block_;
    bool quiet_ = false;
    Presenter presenter_ = &MessageLog::ShowBox;
    std::function<void(const LoggedMessage&)> listener_;
};

// The dock that lists the log: time, block, title, text.
class MessageLogDock : public QDockWidget {
    Q_OBJECT

public:
    explicit MessageLogDock(QWidget* parent = nullptr);
    void Append(const LoggedMessage& entry);
    void ClearRows();
    int Rows() const;
    QString Text(int row, int column) const;

private:
    QTableWidget* table_;
};

}  // namespace zerbin::studio
