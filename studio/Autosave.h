// Work that was never saved survives a crash: while the project has unsaved changes, its text
// goes every few minutes to a recovery file beside it (for a project without a file, in the
// user's data folder). A save or a clean close removes the file; a recovery file newer than
// its project means the studio stopped before the work was saved.
#pragma once

#include <functional>
#include <string>

#include <QObject>
#include <QString>

class QTimer;

namespace zerbin::studio {

class Autosave : public QObject {
    Q_OBJECT

public:
    // modified tells whether there is work to keep; text gives the project's text.
    Autosave(std::function<bool()> modified, std::function<std::string()> text,
             QObject* parent = nullptr);

    static constexpr int kInterval = 3 * 60 * 1000;
    // Where the recovery of a project goes: PROJECT.recovery, or one for untitled work.
    static QString RecoveryOf(const QString& project);
    // True when the project's recovery file is newer than the project: unsaved work is there.
    static bool HasRecovery(const QString& project);

    // The project whose recovery is written from now on.
    void SetProject(const QString& project);
    void SetInterval(int milliseconds);
    // Writes the recovery now when there is unsaved work; false when the write failed.
    bool SaveNow();
    // The project is saved or its changes dropped: its recovery file goes.
    void Discard();

private:
    std::function<bool()> modified_;
    std::function<std::string()> text_;
    QString project_;
    QTimer* timer_;
};

}  // namespace zerbin::studio
