#include "studio/MessageLog.h"

#include "studio/ComponentLibrary.h"

#include <QHeaderView>
#include <QTableWidget>

namespace zerbin::studio {

int MessageLog::Show(const Message& message) {
    Note(message);
    if (quiet_ || !presenter_) {
        const bool asks = message.buttons == MessageButtons::YesNo ||
                          message.buttons == MessageButtons::YesNoCancel;
        return asks ? kMessageYes : kMessageOk;
    }
    return presenter_(message);
}

void MessageLog::Note(const Message& message) {
    LoggedMessage entry{QDateTime::currentDateTime(), block_, message};
    messages_.push_back(entry);
    if (listener_) {
        listener_(entry);
    }
}

int MessageLog::ShowBox(const Message& message) {
    // The component's own box, so that the studio's and the blocks' look and answer alike.
    if (!ComponentLibrary::Loaded()) {
        return kMessageOk;
    }
    const int answer = ComponentLibrary::Entry().showMessageBox(
        message.text.c_str(), message.title.c_str(), StyleOf(message));
    return answer > 0 ? answer : kMessageOk;
}

MessageLogDock::MessageLogDock(QWidget* parent)
    : QDockWidget(tr("Messages"), parent), table_(new QTableWidget(0, 4, this)) {
    setObjectName("messageLog");
    table_->setHorizontalHeaderLabels({tr("Time"), tr("Block"), tr("Title"), tr("Message")});
    table_->horizontalHeader()->setStretchLastSection(true);
    table_->verticalHeader()->setVisible(false);
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setWordWrap(false);
    setWidget(table_);
}

void MessageLogDock::Append(const LoggedMessage& entry) {
    const int row = table_->rowCount();
    table_->insertRow(row);
    const QString text = QString::fromStdString(entry.message.text).replace("\r\n", " ");
    const QStringList cells{entry.time.toString("HH:mm:ss"), entry.block,
                            QString::fromStdString(entry.message.title), text};
    for (int column = 0; column < cells.size(); ++column) {
        auto* item = new QTableWidgetItem(cells[column]);
        item->setToolTip(cells[column]);
        table_->setItem(row, column, item);
    }
    table_->resizeColumnsToContents();
    table_->scrollToBottom();
}

void MessageLogDock::ClearRows() {
    table_->setRowCount(0);
}

int MessageLogDock::Rows() const {
    return table_->rowCount();
}

QString MessageLogDock::Text(int row, int column) const {
    const QTableWidgetItem* item = table_->item(row, column);
    return item ? item->text() : QString();
}

}  // namespace zerbin::studio
