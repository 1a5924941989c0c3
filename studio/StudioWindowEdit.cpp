// The studio's edits of many blocks at once: copy, cut, paste and duplicate of blocks with the
// wires among them, values pasted by name, values set on every selected block, and a reset
// to the type's values.
#include <algorithm>

#include <QApplication>
#include <QClipboard>
#include <QMimeData>
#include <QStatusBar>
#include <QUndoStack>

#include "studio/BlockItem.h"
#include "studio/CanvasScene.h"
#include "studio/GuardedCall.h"
#include "studio/ParametersDock.h"
#include "studio/StudioMessages.h"
#include "studio/StudioWindow.h"

namespace zerbin::studio {
namespace {

// Another studio knows the blocks by this type; any other program sees the text.
constexpr const char* kCopyMimeType = "application/x-zerbin-project";
constexpr qreal kPasteStep = 30;
constexpr const char* kTitle = "Zerbin Studio";

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

std::string ClipboardText() {
    const QMimeData* data = QApplication::clipboard()->mimeData();
    if (data == nullptr) {
        return {};
    }
    return data->hasFormat(kCopyMimeType) ? data->data(kCopyMimeType).toStdString()
                                          : data->text().toStdString();
}

}  // namespace

void StudioWindow::CopySelection() {
    const std::vector<std::string> keys = scene_->SelectedBlocks();
    if (keys.empty()) {
        return;
    }
    std::string text;
    if (!GuardedCall("copy the blocks", [&] { text = project_->CopyText(keys); })) {
        return;
    }
    auto* data = new QMimeData;
    data->setData(kCopyMimeType, QByteArray::fromStdString(text));
    data->setText(QString::fromStdString(text));
    QApplication::clipboard()->setMimeData(data);
    pastes_ = 0;
}

void StudioWindow::CutSelection() {
    if (!scene_->SelectedBlocks().empty()) {
        CopySelection();
        DeleteSelection();
    }
}

void StudioWindow::Paste() {
    PasteText(ClipboardText(), tr("Paste"));
}

void StudioWindow::DuplicateSelection() {
    const std::vector<std::string> keys = scene_->SelectedBlocks();
    std::string text;
    if (!keys.empty() &&
        GuardedCall("duplicate the blocks", [&] { text = project_->CopyText(keys); })) {
        pastes_ = 0;
        PasteText(text, tr("Duplicate"));
    }
}

void StudioWindow::PasteText(const std::string& text, const QString& step) {
    std::string why;
    std::shared_ptr<const pugi::xml_document> copy = StudioProject::ReadCopy(text, &why);
    if (!copy) {
        ShowMessage("Cannot paste: " + why + ".", kTitle, MessageIcon::Exclamation);
        return;
    }
    const std::size_t before = project_->BlockKeys().size();
    ++pastes_;
    const QPointF offset(kPasteStep * pastes_, kPasteStep * pastes_);
    if (Do("paste", new PasteCommand(*project_, std::move(copy), offset, step))) {
        const std::vector<std::string>& keys = project_->BlockKeys();
        SelectBlocks(std::vector<std::string>(keys.begin() + static_cast<std::ptrdiff_t>(before),
                                              keys.end()));
    }
}

void StudioWindow::PasteParameters() {
    std::string why;
    const std::shared_ptr<const pugi::xml_document> copy =
        StudioProject::ReadCopy(ClipboardText(), &why);
    if (!copy) {
        ShowMessage("Cannot paste parameters: " + why + ".", kTitle, MessageIcon::Exclamation);
        return;
    }
    const ValueSnapshot values = StudioProject::CopiedValues(copy->document_element());
    WriteBlocks("paste the parameters", tr("Paste parameters"), scene_->SelectedBlocks(),
                [&](const std::string& key) { return project_->WriteValues(key, values); });
}

void StudioWindow::ResetSelection() {
    WriteBlocks("reset the blocks", tr("Reset to defaults"), scene_->SelectedBlocks(),
                [&](const std::string& key) {
                    return project_->WriteValues(key, project_->DefaultValues(key));
                });
}

void StudioWindow::UpdateTypes() {
    std::vector<std::string> keys;
    std::vector<std::string> candidates = scene_->SelectedBlocks();
    if (candidates.empty()) {
        candidates = project_->BlockKeys();
    }
    GuardedCall("find the changed types", [&] {
        for (const std::string& key : candidates) {
            if (project_->TypeChanged(key)) {
                keys.push_back(key);
            }
        }
    });
    if (keys.empty()) {
        statusBar()->showMessage(tr("No block's type changed since the project was saved."), 8000);
        return;
    }
    std::vector<std::string> dropped;
    if (Do("update the blocks to the library's type",
           new UpdateTypeCommand(*project_, keys, &dropped)) &&
        !dropped.empty()) {
        std::string list;
        for (const std::string& line : dropped) {
            list += "\n" + line;
        }
        ShowMessage("Updated to the library's type; not kept:" + list, kTitle,
                    MessageIcon::Information);
    }
}

void StudioWindow::SetValue(const std::string& key, const std::string& attribute,
                            const std::string& value) {
    if (!project_->Block(key)) {
        return;
    }
    // A value set while several blocks are selected goes to each of them that takes it.
    std::vector<std::string> keys = scene_->SelectedBlocks();
    if (std::find(keys.begin(), keys.end(), key) == keys.end()) {
        keys = {key};
    }
    WriteBlocks("set " + attribute, tr("Set %1 to %2").arg(Q(attribute), Q(value)), keys,
                [&](const std::string& block) -> std::vector<std::string> {
                    if (block == key) {
                        // Already checked by the rules of this block as the user typed it.
                        project_->WriteValue(key, attribute, value);
                        return {};
                    }
                    return project_->WriteValues(block, {{attribute, value}});
                });
    parameters_->Refresh();
}

void StudioWindow::WriteBlocks(
    const std::string& what, const QString& text, const std::vector<std::string>& keys,
    const std::function<std::vector<std::string>(const std::string&)>& write) {
    if (keys.empty()) {
        return;
    }
    auto group = std::make_unique<QUndoCommand>(text);
    std::vector<std::string> refused;
    Step(what, [&] {
        for (const std::string& key : keys) {
            const BlockState before = StateOf(*project_, key);
            std::vector<std::string> notTaken;
            try {
                notTaken = write(key);
            } catch (...) {
                // Taken back whole: this block, then the ones before it, last first.
                GuardedCall("take back the step", [&] {
                    ApplyState(*project_, key, before);
                    group->undo();
                });
                throw;
            }
            const BlockState after = StateOf(*project_, key);
            if (before.values != after.values || before.wires != after.wires) {
                new ValuesCommand(*project_, key, before, after, text, group.get());
            }
            const std::shared_ptr<IAppObject> block = project_->Block(key);
            for (const std::string& entry : notTaken) {
                refused.push_back((block ? block->IAppObject_UserName() : key) + " " + entry);
            }
        }
        if (group->childCount() > 0) {
            // Its values are written: the first redo of each write does nothing.
            undo_->push(group.release());
        }
    });
    if (!refused.empty()) {
        std::string list;
        for (const std::string& entry : refused) {
            list += "\n" + entry;
        }
        ShowMessage("Not written:" + list, kTitle, MessageIcon::Information);
    }
}

void StudioWindow::SelectBlocks(const std::vector<std::string>& keys) {
    {
        const QSignalBlocker quiet(scene_);
        scene_->clearSelection();
        for (const std::string& key : keys) {
            if (QGraphicsItem* item = scene_->Item(key)) {
                item->setSelected(true);
            }
        }
    }
    OnSelectionChanged();
}

}  // namespace zerbin::studio
