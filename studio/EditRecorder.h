// What a block's own editors write happens outside the studio's commands: the parameter list
// writes values straight into the block. This turns such writes into undoable steps. It keeps
// the state of every block whose editors were opened, and records one step for everything
// that one write sets off, once the write is over.
#pragma once

#include <map>
#include <string>

#include <QObject>

#include "studio/StudioProject.h"
#include "studio/UndoCommands.h"

class QUndoStack;

namespace zerbin::studio {

class EditRecorder : public QObject {
    Q_OBJECT

public:
    // Follows the project's changes from now on; goes with its parent.
    EditRecorder(StudioProject& project, QUndoStack& undo, QObject* parent);

    // The block's editors may write from now on: its state is what their steps undo to.
    void Watch(const std::string& key);

private:
    void Remember(const std::string& key);
    void OnChangedOutside(const std::string& key);

    StudioProject& project_;
    QUndoStack& undo_;
    std::map<std::string, BlockState> states_;
    std::map<std::string, BlockState> pending_;
};

}  // namespace zerbin::studio
