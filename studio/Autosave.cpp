#include "studio/Autosave.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTimer>

#include "studio/BlockFactory.h"
#include "studio/GuardedCall.h"

namespace zerbin::studio {

Autosave::Autosave(std::function<bool()> modified, std::function<std::string()> text,
                   QObject* parent)
    : QObject(parent),
      modified_(std::move(modified)),
      text_(std::move(text)),
      timer_(new QTimer(this)) {
    connect(timer_, &QTimer::timeout, this, [this] { SaveNow(); });
    timer_->start(kInterval);
}

QString Autosave::RecoveryOf(const QString& project) {
    if (!project.isEmpty()) {
        return project + ".recovery";
    }
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    return QDir(folder).filePath("untitled.xml.recovery");
}

bool Autosave::HasRecovery(const QString& project) {
    const QFileInfo recovery(RecoveryOf(project));
    if (!recovery.exists()) {
        return false;
    }
    const QFileInfo file(project);
    return project.isEmpty() || !file.exists() || recovery.lastModified() >= file.lastModified();
}

void Autosave::SetProject(const QString& project) {
    project_ = project;
}

void Autosave::SetInterval(int milliseconds) {
    timer_->start(milliseconds);
}

bool Autosave::SaveNow() {
    if (!modified_()) {
        return true;
    }
    std::string text;
    // A project that cannot be written (a value XML cannot carry) keeps its last recovery.
    if (!GuardedCall("keep a recovery of the project", [&] { text = text_(); })) {
        return false;
    }
    const QString file = RecoveryOf(project_);
    QDir().mkpath(QFileInfo(file).absolutePath());
    // Whole or not at all, as every file the studio writes.
    std::string why;
    return BlockFactory::ProjectFiles()->IProjectFiles_WriteText(file.toStdString(),
                                                                 "recovery file", text, why);
}

void Autosave::Discard() {
    // With it goes the previous version the file service kept beside it.
    const QString file = RecoveryOf(project_);
    QFile::remove(file);
    QFile::remove(file + "~");
}

}  // namespace zerbin::studio
