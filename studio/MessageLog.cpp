#include "studio/MessageLog.h"

#include <QApplication>
#include <QHeaderView>
#include <QMessageBox>
#include <QTableWidget>

namespace zerbin::studio {

int MessageLog::Show(const Message& message) {
    LoggedMessage entry{QDateTime::currentDateTime(), block_, message};
    messages_.push_back(entry);
    if (listener_) {
        listener_(entry);
    }
    if (quiet_ || !presenter_) {
        const bool asks = message.buttons == MessageButtons::YesNo ||
                          message.buttons == MessageButtons::YesNoCancel;
        return asks ? kMessageYes : kMessageOk;
    }
    return presenter_(message);
}

int MessageLog::ShowBox(const Message& message) {
    static const QMessageBox::Icon icons[] = {QMessageBox::NoIcon, QMessageBox::Critical,
                                              QMessageBox::Question, QMessageBox::Warning,
                                              QMessageBox::Information};
    static const QMessageBox::StandardButtons buttons[] = {
        QMessageBox::Ok, QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Yes | QMessageBox::No,
        QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel};
    QWidget* parent = QApplication::activeModalWidget() != nullptr
                          ? QApplication::activeModalWidget()
                          : QApplication::activeWindow();
    // The component breaks its lines the Windows way.
    QMessageBox box(icons[static_cast<int>(message.icon)], QString::fromStdString(message.title),
                    QString::fromStdString(message.text).replace("\r\n", "\n"),
                    buttons[static_cast<int>(message.buttons)], parent);
    switch (box.exec()) {
        case QMessageBox::Cancel:
            return kMessageCancel;
        case QMessageBox::Yes:
            return kMessageYes;
        case QMessageBox::No:
            return kMessageNo;
        default:
            return kMessageOk;
    }
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
