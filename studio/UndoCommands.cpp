#include "studio/UndoCommands.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include <QObject>

namespace zerbin::studio {
namespace {

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

// Blocks back from their saved elements, each at its place, with the wires that went with them
// and the values the blocks at the wires' far ends had.
void BringBack(StudioProject& project, const std::vector<pugi::xml_node>& elements,
               const std::vector<int>& positions, const std::vector<Wire>& wires,
               const std::vector<std::pair<std::string, ValueSnapshot>>& targetValues) {
    project.RestoreBlocks(elements, positions);
    for (const Wire& wire : wires) {
        if (!project.HasWire(wire)) {
            project.Connect(wire);
        }
    }
    for (const auto& [key, values] : targetValues) {
        project.ApplyValues(key, values);
    }
}

}  // namespace

BlockState StateOf(const StudioProject& project, const std::string& key) {
    return BlockState{project.Values(key), project.WiresOf(key)};
}

PlaceCommand::PlaceCommand(StudioProject& project, std::string type, QPointF pos,
                           std::string* placed)
    : project_(project), type_(std::move(type)), pos_(pos), placed_(placed) {
    setText(QObject::tr("Place %1").arg(Q(type_)));
}

void PlaceCommand::redo() {
    if (saved_.first_child()) {
        project_.RestoreBlock(saved_.first_child(), -1);
    } else {
        key_ = project_.AddBlock(type_, pos_);
        if (placed_ != nullptr) {
            *std::exchange(placed_, nullptr) = key_;
        }
        if (key_.empty()) {
            setObsolete(true);
        }
    }
}

void PlaceCommand::undo() {
    saved_.reset();
    project_.BlockElement(key_, saved_, saved_);
    project_.RemoveBlock(key_);
}

DeleteCommand::DeleteCommand(StudioProject& project, std::vector<std::string> keys,
                             std::vector<Wire> wires)
    : project_(project), keys_(std::move(keys)), wires_(std::move(wires)) {
    std::unordered_set<Wire, WireHash> listed(wires_.begin(), wires_.end());
    for (const std::string& key : keys_) {
        for (const Wire& wire : project.WiresOf(key)) {
            if (listed.insert(wire).second) {
                wires_.push_back(wire);
            }
        }
    }
    setText(keys_.empty()
                ? QObject::tr("Delete wires")
                : QObject::tr("Delete %n block(s)", nullptr, static_cast<int>(keys_.size())));
}

void DeleteCommand::redo() {
    saved_.reset();
    pugi::xml_node root = saved_.append_child("Deleted");
    targetValues_.clear();
    // A deleted block's values are in its saved element; only the blocks that stay need theirs.
    const std::unordered_set<std::string> going(keys_.begin(), keys_.end());
    std::unordered_set<std::string> kept;
    for (const Wire& wire : wires_) {
        if (going.count(wire.target) == 0 && kept.insert(wire.target).second) {
            targetValues_.emplace_back(wire.target, project_.Values(wire.target));
        }
    }
    for (const Wire& wire : wires_) {
        project_.Disconnect(wire);
    }
    for (const std::string& key : keys_) {
        project_.BlockElement(key, saved_, root);
    }
    // Known before any block goes, so that an undo after a failure halfway finds them.
    positions_ = project_.PlacesOf(keys_);
    project_.RemoveBlocks(keys_);
}

void DeleteCommand::undo() {
    // Only what went comes back: a redo that failed halfway left the rest in place.
    std::vector<pugi::xml_node> elements;
    std::vector<int> positions;
    std::size_t i = 0;
    for (pugi::xml_node element : saved_.first_child().children()) {
        if (i < positions_.size() && !project_.Block(keys_[i])) {
            elements.push_back(element);
            positions.push_back(positions_[i]);
        }
        ++i;
    }
    BringBack(project_, elements, positions, wires_, targetValues_);
}

PasteCommand::PasteCommand(StudioProject& project, std::shared_ptr<const pugi::xml_document> copy,
                           QPointF offset, const QString& text)
    : project_(project), copy_(std::move(copy)), offset_(offset) {
    setText(text);
}

void PasteCommand::redo() {
    if (!saved_.first_child()) {
        keys_.clear();
        project_.PasteBlocks(copy_->document_element(), offset_, keys_);
        if (keys_.empty()) {
            setObsolete(true);
        }
        return;
    }
    std::vector<pugi::xml_node> elements;
    std::vector<int> positions;
    for (pugi::xml_node element : saved_.first_child().children()) {
        positions.push_back(static_cast<int>(project_.BlockKeys().size() + elements.size()));
        elements.push_back(element);
    }
    project_.RestoreBlocks(elements, positions);
    for (const Wire& wire : wires_) {
        if (!project_.HasWire(wire)) {
            project_.Connect(wire);
        }
    }
}

void PasteCommand::undo() {
    saved_.reset();
    pugi::xml_node root = saved_.append_child("Pasted");
    wires_.clear();
    std::unordered_set<Wire, WireHash> listed;
    for (const std::string& key : keys_) {
        project_.BlockElement(key, saved_, root);
        for (const Wire& wire : project_.WiresOf(key)) {
            if (listed.insert(wire).second) {
                wires_.push_back(wire);
            }
        }
    }
    project_.RemoveBlocks(keys_);
}

UpdateTypeCommand::UpdateTypeCommand(StudioProject& project, std::vector<std::string> keys,
                                     std::vector<std::string>* dropped)
    : project_(project), keys_(std::move(keys)), dropped_(dropped) {
    setText(QObject::tr("Update %n block(s) to the library's type", nullptr,
                        static_cast<int>(keys_.size())));
}

void UpdateTypeCommand::redo() {
    saved_.reset();
    pugi::xml_node root = saved_.append_child("Updated");
    wires_.clear();
    targetValues_.clear();
    const std::unordered_set<std::string> updated(keys_.begin(), keys_.end());
    std::unordered_set<Wire, WireHash> listed;
    std::unordered_set<std::string> targets;
    for (const std::string& key : keys_) {
        project_.BlockElement(key, saved_, root);
        for (const Wire& wire : project_.WiresOf(key)) {
            if (listed.insert(wire).second) {
                wires_.push_back(wire);
            }
            if (updated.count(wire.target) == 0 && targets.insert(wire.target).second) {
                targetValues_.emplace_back(wire.target, project_.Values(wire.target));
            }
        }
    }
    positions_ = project_.PlacesOf(keys_);
    for (const std::string& key : keys_) {
        std::vector<std::string> lines = project_.UpdateType(key);
        if (dropped_ != nullptr) {
            const std::shared_ptr<IAppObject> block = project_.Block(key);
            const std::string name = block ? block->IAppObject_UserName() : key;
            for (const std::string& line : lines) {
                dropped_->push_back(name + ": " + line);
            }
        }
    }
    dropped_ = nullptr;
}

void UpdateTypeCommand::undo() {
    // The blocks as they were saved: their element still holds the values the type no longer
    // takes and the stamp of the type they were saved under.
    project_.RemoveBlocks(keys_);
    std::vector<pugi::xml_node> elements;
    for (pugi::xml_node element : saved_.first_child().children()) {
        elements.push_back(element);
    }
    BringBack(project_, elements, positions_, wires_, targetValues_);
}

SettingsCommand::SettingsCommand(StudioProject& project, ProjectSettings from, ProjectSettings to)
    : project_(project), from_(from), to_(to) {
    setText(QObject::tr("Project settings"));
}

void SettingsCommand::redo() {
    project_.ApplySettings(to_);
}

void SettingsCommand::undo() {
    project_.ApplySettings(from_);
}

MoveCommand::MoveCommand(StudioProject& project, std::vector<BlockMove> moves)
    : project_(project), moves_(std::move(moves)) {
    setText(QObject::tr("Move"));
}

void MoveCommand::redo() {
    for (const BlockMove& move : moves_) {
        project_.MoveBlock(move.key, move.to);
    }
}

void MoveCommand::undo() {
    for (const BlockMove& move : moves_) {
        project_.MoveBlock(move.key, move.from);
    }
}

RenameCommand::RenameCommand(StudioProject& project, std::string key, std::string from,
                             std::string to)
    : project_(project), key_(std::move(key)), from_(std::move(from)), to_(std::move(to)) {
    setText(QObject::tr("Rename %1").arg(Q(to_)));
}

void RenameCommand::redo() {
    project_.RenameBlock(key_, to_);
}

void RenameCommand::undo() {
    project_.RenameBlock(key_, from_);
}

WireCommand::WireCommand(StudioProject& project, Wire wire, bool connect)
    : project_(project), wire_(std::move(wire)), connect_(connect) {
    setText(connect ? QObject::tr("Wire %1 to %2").arg(Q(wire_.output), Q(wire_.input))
                    : QObject::tr("Remove wire"));
}

void WireCommand::redo() {
    targetValues_ = project_.Values(wire_.target);
    if (connect_) {
        project_.Connect(wire_);
    } else {
        project_.Disconnect(wire_);
    }
}

void WireCommand::undo() {
    if (connect_) {
        project_.Disconnect(wire_);
    } else {
        project_.Connect(wire_);
    }
    project_.ApplyValues(wire_.target, targetValues_);
}

ValuesCommand::ValuesCommand(StudioProject& project, std::string key, BlockState before,
                             BlockState after, const QString& text, QUndoCommand* parent)
    : QUndoCommand(parent),
      project_(project),
      key_(std::move(key)),
      before_(std::move(before)),
      after_(std::move(after)) {
    setText(text);
}

void ValuesCommand::redo() {
    if (done_) {
        done_ = false;
        return;
    }
    Apply(after_);
}

void ValuesCommand::undo() {
    Apply(before_);
}

void ValuesCommand::Apply(const BlockState& state) {
    ApplyState(project_, key_, state);
}

void ApplyState(StudioProject& project, const std::string& key, const BlockState& state) {
    // Wires that the state lacks go first, so that a type selector is free to change.
    const std::vector<Wire> before = project.WiresOf(key);
    for (const Wire& wire : before) {
        if (std::find(state.wires.begin(), state.wires.end(), wire) == state.wires.end()) {
            project.Disconnect(wire);
        }
    }
    project.ApplyValues(key, state.values);
    const std::vector<Wire> now = project.WiresOf(key);
    for (const Wire& wire : state.wires) {
        if (std::find(now.begin(), now.end(), wire) == now.end()) {
            project.Connect(wire);
        }
    }
}

}  // namespace zerbin::studio
