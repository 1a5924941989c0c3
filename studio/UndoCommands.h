// The studio's undoable steps. Each works through the project by block key, so that a step
// still finds its block after the block was deleted and restored by other steps.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <QPointF>
#include <QUndoCommand>

#include <pugixml.hpp>

#include "studio/StudioProject.h"

namespace zerbin::studio {

class PlaceCommand : public QUndoCommand {
public:
    // The new block's key goes to *placed as well, once: a command that places nothing is
    // dropped by the undo stack as it is pushed.
    PlaceCommand(StudioProject& project, std::string type, QPointF pos,
                 std::string* placed = nullptr);
    void redo() override;
    void undo() override;

private:
    StudioProject& project_;
    std::string type_;
    QPointF pos_;
    std::string* placed_;
    std::string key_;
    pugi::xml_document saved_;
};

// Deletes blocks and wires; the wires of the blocks go with them.
class DeleteCommand : public QUndoCommand {
public:
    DeleteCommand(StudioProject& project, std::vector<std::string> keys, std::vector<Wire> wires);
    void redo() override;
    void undo() override;

private:
    StudioProject& project_;
    std::vector<std::string> keys_;
    std::vector<Wire> wires_;
    std::vector<int> positions_;
    // The values of the blocks that stay at the wires' far ends, to put back on undo.
    std::vector<std::pair<std::string, ValueSnapshot>> targetValues_;
    pugi::xml_document saved_;
};

// Adds the blocks of a copy, with the wires among them; an undo takes them away and a redo
// brings them back under the same keys.
class PasteCommand : public QUndoCommand {
public:
    PasteCommand(StudioProject& project, std::shared_ptr<const pugi::xml_document> copy,
                 QPointF offset, const QString& text);
    void redo() override;
    void undo() override;

private:
    StudioProject& project_;
    std::shared_ptr<const pugi::xml_document> copy_;
    QPointF offset_;
    std::vector<std::string> keys_;
    std::vector<Wire> wires_;
    pugi::xml_document saved_;
};

// Brings blocks whose type changed under the project to the library's type; what could not be
// mapped goes to *dropped, "BLOCK: NAME 'VALUE': why", on the first redo. Undo brings the
// blocks back as they were saved before, with their wires.
class UpdateTypeCommand : public QUndoCommand {
public:
    UpdateTypeCommand(StudioProject& project, std::vector<std::string> keys,
                      std::vector<std::string>* dropped);
    void redo() override;
    void undo() override;

private:
    StudioProject& project_;
    std::vector<std::string> keys_;
    std::vector<std::string>* dropped_;
    std::vector<int> positions_;
    std::vector<Wire> wires_;
    std::vector<std::pair<std::string, ValueSnapshot>> targetValues_;
    pugi::xml_document saved_;
};

class SettingsCommand : public QUndoCommand {
public:
    SettingsCommand(StudioProject& project, ProjectSettings from, ProjectSettings to);
    void redo() override;
    void undo() override;

private:
    StudioProject& project_;
    ProjectSettings from_;
    ProjectSettings to_;
};

class MoveCommand : public QUndoCommand {
public:
    MoveCommand(StudioProject& project, std::vector<BlockMove> moves);
    void redo() override;
    void undo() override;

private:
    StudioProject& project_;
    std::vector<BlockMove> moves_;
};

class RenameCommand : public QUndoCommand {
public:
    RenameCommand(StudioProject& project, std::string key, std::string from, std::string to);
    void redo() override;
    void undo() override;

private:
    StudioProject& project_;
    std::string key_;
    std::string from_;
    std::string to_;
};

class WireCommand : public QUndoCommand {
public:
    WireCommand(StudioProject& project, Wire wire, bool connect);
    void redo() override;
    void undo() override;

private:
    StudioProject& project_;
    Wire wire_;
    bool connect_;
    // A connection writes the length of its type into an attribute of the target and a
    // disconnection writes 0 there; undo puts back what the target held.
    ValueSnapshot targetValues_;
};

// What one value write left behind: every value of the block and its wires, before and
// after. A write made elsewhere (an editor) is recorded done; its first redo does nothing.
struct BlockState {
    ValueSnapshot values;
    std::vector<Wire> wires;
};

class ValuesCommand : public QUndoCommand {
public:
    ValuesCommand(StudioProject& project, std::string key, BlockState before, BlockState after,
                  const QString& text, QUndoCommand* parent = nullptr);
    void redo() override;
    void undo() override;

private:
    void Apply(const BlockState& state);

    StudioProject& project_;
    std::string key_;
    BlockState before_;
    BlockState after_;
    bool done_ = true;
};

BlockState StateOf(const StudioProject& project, const std::string& key);
// Brings the block's values and wires to the state.
void ApplyState(StudioProject& project, const std::string& key, const BlockState& state);

}  // namespace zerbin::studio
