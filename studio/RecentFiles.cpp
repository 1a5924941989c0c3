#include "studio/RecentFiles.h"

#include <QFileInfo>
#include <QSettings>
#include <QStringList>

namespace zerbin::studio {
namespace {

constexpr int kRecentFiles = 6;
constexpr const char* kKey = "recentFiles";

}  // namespace

RecentFiles::RecentFiles(QMenu* menu, std::function<void(const QString&)> open)
    : menu_(menu), open_(std::move(open)) {
    Fill();
}

void RecentFiles::Add(const QString& file) {
    QSettings settings;
    QStringList files = settings.value(kKey).toStringList();
    const QString path = QFileInfo(file).absoluteFilePath();
    files.removeAll(path);
    files.prepend(path);
    while (files.size() > kRecentFiles) {
        files.removeLast();
    }
    settings.setValue(kKey, files);
    Fill();
}

void RecentFiles::Fill() {
    menu_->clear();
    const QStringList files = QSettings().value(kKey).toStringList();
    for (const QString& file : files) {
        menu_->addAction(file, menu_, [this, file] { open_(file); });
    }
    menu_->setEnabled(!files.isEmpty());
}

}  // namespace zerbin::studio
