#include "WindowSession.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QWidget>

#include <stdexcept>

#include "interfaces/IEditors.h"
#include "zerbin/QtPicture.h"

namespace {

// The host's window as IAppObject_Show takes its owner.
struct OwnerWindow : zerbin::IHostWindow {
    explicit OwnerWindow(QWidget* widget) : widget(widget) {}
    void* HostWindow() override { return widget; }
    QWidget* widget;
};

// The visible top-level window other than the host's own: the parameter list just opened.
QWidget* OpenedWindow(const QWidget* host) {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget != host && widget->isVisible()) {
            return widget;
        }
    }
    return nullptr;
}

// The window with a title bar drawn above it, as a desktop shows it: the window's icon (the
// block's) and its caption.
QImage WithTitleBar(QWidget* window) {
    const QImage body = window->grab().toImage();
    constexpr int kBar = 28;
    QImage image(body.width(), body.height() + kBar, QImage::Format_ARGB32);
    image.fill(QColor(0xE8, 0xEB, 0xF0));
    QPainter painter(&image);
    window->windowIcon().paint(&painter, QRect(6, 6, 16, 16));
    painter.setPen(Qt::black);
    painter.drawText(QRect(28, 0, body.width() - 34, kBar), Qt::AlignVCenter,
                     window->windowTitle());
    painter.drawImage(0, kBar, body);
    return image;
}

}  // namespace

struct WindowSession::Impl {
    Impl(int& argc, char** argv) : application(argc, argv) {}
    QApplication application;
};

WindowSession::WindowSession(int& argc, char** argv) : impl_(std::make_unique<Impl>(argc, argv)) {}

WindowSession::~WindowSession() = default;

void WindowSession::Show(const std::shared_ptr<zerbin::IAppObject>& block,
                         const std::optional<std::filesystem::path>& snapshot) {
    QWidget host;
    host.setWindowTitle(QStringLiteral("zerbin-host"));
    host.setWindowIcon(zerbin::ToQIcon(block->IAppObject_Icon().get()));
    host.resize(320, 60);
    if (!snapshot) {
        host.show();
    }
    block->IAppObject_Show(std::make_shared<OwnerWindow>(&host));
    QApplication::processEvents();
    QWidget* list = OpenedWindow(&host);
    if (list == nullptr) {
        throw std::runtime_error("the plug-in opened no parameter list");
    }
    if (snapshot) {
        if (!WithTitleBar(list).save(QString::fromStdString(snapshot->string()))) {
            throw std::runtime_error("cannot write '" + snapshot->string() + "'");
        }
        list->close();
    } else {
        QApplication::exec();
    }
    // The windows go now, with the host's window, before the blocks they show.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}
