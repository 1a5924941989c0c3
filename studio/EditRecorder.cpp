#include "studio/EditRecorder.h"

#include <QTimer>
#include <QUndoStack>

#include "studio/GuardedCall.h"

namespace zerbin::studio {

EditRecorder::EditRecorder(StudioProject& project, QUndoStack& undo, QObject* parent)
    : QObject(parent), project_(project), undo_(undo) {
    connect(&project_, &StudioProject::cleared, this, [this] {
        states_.clear();
        pending_.clear();
    });
    connect(&project_, &StudioProject::blockChanged, this, &EditRecorder::Remember);
    connect(&project_, &StudioProject::blockRemoved, this,
            [this](const std::string& key) { states_.erase(key); });
    auto wireChanged = [this](const Wire& wire) {
        Remember(wire.source);
        Remember(wire.target);
    };
    connect(&project_, &StudioProject::wireAdded, this, wireChanged);
    connect(&project_, &StudioProject::wireRemoved, this, wireChanged);
    connect(&project_, &StudioProject::valuesChangedOutside, this, &EditRecorder::OnChangedOutside);
}

void EditRecorder::Watch(const std::string& key) {
    states_[key] = StateOf(project_, key);
}

// A change made by the studio's own steps is the new state to undo the editors' writes to.
void EditRecorder::Remember(const std::string& key) {
    if (states_.count(key) != 0 && pending_.count(key) == 0 && project_.Block(key)) {
        states_[key] = StateOf(project_, key);
    }
}

void EditRecorder::OnChangedOutside(const std::string& key) {
    if (pending_.count(key) != 0) {
        return;
    }
    if (states_.count(key) == 0) {
        // A block whose editors were never opened here: its state from before is unknown,
        // so the write can't become a step. Start watching it now.
        states_[key] = StateOf(project_, key);
        return;
    }
    pending_[key] = states_[key];
    QTimer::singleShot(0, this, [this, key] {
        const auto found = pending_.find(key);
        if (found == pending_.end()) {
            return;
        }
        const BlockState before = found->second;
        pending_.erase(found);
        if (!project_.Block(key)) {
            return;
        }
        GuardedCall("record the edit", [&] {
            const BlockState after = StateOf(project_, key);
            states_[key] = after;
            if (before.values != after.values || before.wires != after.wires) {
                undo_.push(new ValuesCommand(project_, key, before, after,
                                             tr("Edit %1").arg(QString::fromStdString(
                                                 project_.Block(key)->IAppObject_UserName()))));
            }
        });
    });
}

}  // namespace zerbin::studio
