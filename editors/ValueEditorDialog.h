// What the five value editors share: the points given through DataPoint, the flag of a call
// from the structure editor with the value to put back, the close that leaves the window clean
// for its next use, and the frame of a fixed dialog whose buttons are neither default nor
// cancel, so that Enter and Esc reach the value box as keys.
#pragma once

#include <QDialog>

#include <memory>
#include <string>
#include <vector>

#include "editors/EditPoint.h"
#include "platform/Messages.h"

class QLabel;
class QPushButton;

namespace zerbin {

class ValueEditorDialog : public QDialog {
    Q_OBJECT

public:
    explicit ValueEditorDialog(QWidget* parent = nullptr);

    // Appends the point to the points to write, makes it the one shown and keeps its value
    // to put back.
    virtual void DataPoint(std::shared_ptr<IObject> point);
    // While true, a close without OK writes the kept value back to the point shown.
    void CalledFramModif4(bool calledFromStructure);
    bool CalledFramModif4() const { return calledFramModif4_; }

    // Shows the window modally over owner's window (none: over nothing) and returns when it
    // closes. The window stays out of owner's children on purpose: the host may delete its
    // window while this one is open, and the user's edit must outlive that.
    int ExecOver(QWidget* owner);

    // The window's caption for every editor.
    static constexpr const char* kCaption = "Edit value";

protected:
    // Fills the window from the point shown; runs when the window is shown after DataPoint.
    virtual void Load() = 0;

    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void done(int result) override;

    // The point shown; nullptr when none was given.
    const EditPoint* CurrentPoint() const;
    // Walks the points in order, the point shown following the walk; write returns false to
    // stop there, and so does this.
    template <class F>
    bool ForEachPoint(F&& write) {
        for (current_ = 0; current_ < points_.size(); ++current_) {
            if (!write(points_[current_])) {
                return false;
            }
        }
        current_ = points_.empty() ? 0 : points_.size() - 1;
        return true;
    }
    const std::vector<EditPoint>& DataPoints() const { return points_; }
    const std::string& OldValue() const { return oldValue_; }

    // OK has written: the close puts nothing back.
    void CloseAfterOk();
    // OK of an editor that writes one text to every point: a failure to make or write it shows
    // failureMessage, and the window closes either way.
    template <class F>
    void WriteEveryPointAndClose(F&& makeValue, const char* failureMessage) {
        try {
            const std::string value = makeValue();
            ForEachPoint([&](const EditPoint& point) {
                point.Value(value);
                return true;
            });
        } catch (...) {
            ShowMessage(failureMessage);
        }
        CloseAfterOk();
    }

    static QLabel* BoldLabel(const char* objectName, QWidget* parent);
    // "&OK" and "&Cancel" buttons that Enter does not press.
    static QPushButton* Button(const char* objectName, const QString& caption, QWidget* parent);

private:
    std::vector<EditPoint> points_;
    std::size_t current_ = 0;
    bool calledFramModif4_ = false;
    bool loaded_ = false;
    std::string oldValue_;
};

}  // namespace zerbin
