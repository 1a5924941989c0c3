// The studio window's menus, tool bar and shortcuts: every action a user can take, by name,
// wired to the window's operations.
#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QDockWidget>
#include <QFileDialog>
#include <QKeySequence>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPrintDialog>
#include <QPrinter>
#include <QSettings>
#include <QToolBar>
#include <QUndoStack>

#include "studio/CanvasScene.h"
#include "studio/StudioWindow.h"

namespace zerbin::studio {

void StudioWindow::BuildActions() {
    QMenu* file = menuBar()->addMenu(tr("&File"));
    auto add = [this](QMenu* menu, const QString& name, const QString& text, QKeySequence shortcut,
                      auto slot) {
        QAction* action = menu->addAction(text);
        action->setObjectName(name);
        action->setShortcut(shortcut);
        connect(action, &QAction::triggered, this, slot);
        return action;
    };
    const QString projects = tr("Zerbin projects (*.xml);;All files (*)");
    add(file, "actionNew", tr("&New"), QKeySequence::New, [this] {
        if (MaybeSave()) {
            NewProject();
        }
    });
    add(file, "actionOpen", tr("&Open..."), QKeySequence::Open, [this, projects] {
        if (!MaybeSave()) {
            return;
        }
        const QString name = QFileDialog::getOpenFileName(this, tr("Open project"), {}, projects);
        if (!name.isEmpty()) {
            OpenProject(name);
        }
    });
    recent_ = std::make_unique<RecentFiles>(file->addMenu(tr("Open &recent")),
                                            [this](const QString& chosen) {
                                                if (MaybeSave()) {
                                                    OpenProject(chosen);
                                                }
                                            });
    add(file, "actionSave", tr("&Save"), QKeySequence::Save, [this] { Save(); });
    QAction* saveAs =
        add(file, "actionSaveAs", tr("Save &as..."), QKeySequence::SaveAs, [this, projects] {
            const QString name =
                QFileDialog::getSaveFileName(this, tr("Save project"), file_, projects);
            if (!name.isEmpty()) {
                SaveProjectAs(name);
            }
        });
    saveAs->setShortcuts({QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S)});
    file->addSeparator();
    add(file, "actionOpenLibrary", tr("Open library &folder..."), QKeySequence(), [this] {
        const QString folder = QFileDialog::getExistingDirectory(
            this, tr("Block library"), QString::fromStdString(factory_.Library().string()));
        if (!folder.isEmpty()) {
            OpenLibrary(folder);
        }
    });
    add(file, "actionOpenDictionary", tr("Open &dictionary..."), QKeySequence(), [this] {
        const QString name = QFileDialog::getOpenFileName(this, tr("SNVT dictionary"), {},
                                                          tr("XML documents (*.xml)"));
        if (!name.isEmpty()) {
            OpenDictionary(name);
        }
    });
    add(file, "actionOpenDevice", tr("Open owner &device document..."), QKeySequence(), [this] {
        const QString name = QFileDialog::getOpenFileName(this, tr("Owner device document"), {},
                                                          tr("XML documents (*.xml)"));
        if (!name.isEmpty()) {
            OpenOwnerDevice(name);
        }
    });
    file->addSeparator();
    add(file, "actionExportImages", tr("Export &images..."), QKeySequence(), [this] {
        const QString name =
            QFileDialog::getSaveFileName(this, tr("Export images"), {}, tr("Text files (*.txt)"));
        if (!name.isEmpty()) {
            ExportImages(name);
        }
    });
    add(file, "actionExportSimulator", tr("Export for the &simulator..."), QKeySequence(), [this] {
        const QString name = QFileDialog::getSaveFileName(this, tr("Simulator form"), {},
                                                          tr("XML documents (*.xml)"));
        if (!name.isEmpty()) {
            ExportForm(name, true);
        }
    });
    add(file, "actionExportInteroperability", tr("Export for &other tools..."), QKeySequence(),
        [this] {
            const QString name = QFileDialog::getSaveFileName(this, tr("Interoperability form"), {},
                                                              tr("XML documents (*.xml)"));
            if (!name.isEmpty()) {
                ExportForm(name, false);
            }
        });
    add(file, "actionExportDrawing", tr("Export &drawing..."), QKeySequence(), [this] {
        QString filters = tr("PDF documents (*.pdf);;PNG images (*.png)");
#ifdef ZERBIN_STUDIO_WITH_SVG
        filters += tr(";;SVG drawings (*.svg)");
#endif
        const QString name = QFileDialog::getSaveFileName(this, tr("Export drawing"), {}, filters);
        if (!name.isEmpty()) {
            ExportDrawing(name);
        }
    });
    add(file, "actionPrint", tr("&Print..."), QKeySequence::Print, [this] {
        QPrinter printer;
        QPrintDialog dialog(&printer, this);
        if (dialog.exec() == QDialog::Accepted) {
            PrintDrawing(printer);
        }
    });
    file->addSeparator();
    add(file, "actionQuit", tr("&Quit"), QKeySequence::Quit, [this] { close(); });

    QMenu* edit = menuBar()->addMenu(tr("&Edit"));
    QAction* undo = add(edit, "actionUndo", tr("&Undo"), QKeySequence::Undo,
                        [this] { Step("undo", [this] { undo_->undo(); }); });
    QAction* redo = add(edit, "actionRedo", tr("&Redo"), QKeySequence::Redo,
                        [this] { Step("redo", [this] { undo_->redo(); }); });
    redo->setShortcuts(
        {QKeySequence(Qt::CTRL | Qt::Key_Y), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)});
    undo->setEnabled(false);
    redo->setEnabled(false);
    connect(undo_, &QUndoStack::canUndoChanged, undo, &QAction::setEnabled);
    connect(undo_, &QUndoStack::canRedoChanged, redo, &QAction::setEnabled);
    edit->addSeparator();
    add(edit, "actionCut", tr("Cu&t"), QKeySequence::Cut, [this] { CutSelection(); });
    add(edit, "actionCopy", tr("&Copy"), QKeySequence::Copy, [this] { CopySelection(); });
    add(edit, "actionPaste", tr("&Paste"), QKeySequence::Paste, [this] { Paste(); });
    add(edit, "actionDuplicate", tr("D&uplicate"), QKeySequence(Qt::CTRL | Qt::Key_D),
        [this] { DuplicateSelection(); });
    add(edit, "actionPasteParameters", tr("Paste para&meters"),
        QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_V), [this] { PasteParameters(); });
    add(edit, "actionReset", tr("Reset to &defaults"), QKeySequence(),
        [this] { ResetSelection(); });
    add(edit, "actionDelete", tr("&Delete"), QKeySequence::Delete, [this] { DeleteSelection(); });
    add(edit, "actionRename", tr("Re&name"), QKeySequence(Qt::Key_F2), [this] {
        if (!selected_.empty()) {
            scene_->StartRename(selected_);
        }
    });
    add(edit, "actionParameters", tr("&Parameters..."), QKeySequence(Qt::ALT | Qt::Key_Return),
        [this] { ShowParameters(selected_); });
    add(edit, "actionSelectAll", tr("Select &all"), QKeySequence::SelectAll,
        [this] { scene_->SelectAll(); });
    add(edit, "actionFind", tr("&Find block..."), QKeySequence::Find, [this] {
        findField_->setFocus();
        findField_->selectAll();
    });
    QMenu* arrange = edit->addMenu(tr("Arra&nge"));
    add(arrange, "actionAlignLeft", tr("Align &left edges"), QKeySequence(),
        [this] { Arrange(Arrangement::AlignLeft); });
    add(arrange, "actionAlignTop", tr("Align &tops"), QKeySequence(),
        [this] { Arrange(Arrangement::AlignTop); });
    add(arrange, "actionSpreadAcross", tr("Spread &across"), QKeySequence(),
        [this] { Arrange(Arrangement::SpreadAcross); });
    add(arrange, "actionSpreadDown", tr("Spread &down"), QKeySequence(),
        [this] { Arrange(Arrangement::SpreadDown); });

    QMenu* view = menuBar()->addMenu(tr("&View"));
    QAction* zoomIn = add(view, "actionZoomIn", tr("Zoom &in"), QKeySequence::ZoomIn,
                          [this] { view_->ZoomBy(1.25); });
    zoomIn->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_Equal), QKeySequence::ZoomIn});
    QAction* zoomOut = add(view, "actionZoomOut", tr("Zoom &out"), QKeySequence::ZoomOut,
                           [this] { view_->ZoomBy(1 / 1.25); });
    zoomOut->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_Minus), QKeySequence::ZoomOut});
    add(view, "actionZoomFit", tr("Zoom to &fit"), QKeySequence(Qt::CTRL | Qt::Key_0),
        [this] { view_->ZoomToFit(); });
    snap_ = add(view, "actionSnap", tr("&Snap to grid"), QKeySequence(),
                [this](bool on) { scene_->SetSnap(on); });
    snap_->setCheckable(true);
    snap_->setChecked(true);
    view->addSeparator();
    for (QDockWidget* dock : findChildren<QDockWidget*>()) {
        view->addAction(dock->toggleViewAction());
    }

    QMenu* project = menuBar()->addMenu(tr("&Project"));
    usUnits_ = project->addAction(tr("&US customary units"));
    usUnits_->setObjectName("actionUsUnits");
    usUnits_->setCheckable(true);
    connect(usUnits_, &QAction::triggered, this,
            [this](bool on) { ApplySettings(on, project_->Settings().shortFloat); });
    shortFloat_ = project->addAction(tr("&Short floats"));
    shortFloat_->setObjectName("actionShortFloat");
    shortFloat_->setCheckable(true);
    connect(shortFloat_, &QAction::triggered, this,
            [this](bool on) { ApplySettings(project_->Settings().usUnits, on); });
    project->addSeparator();
    loadToLog_ = project->addAction(tr("Messages while loading go to the &log"));
    loadToLog_->setObjectName("actionLoadToLog");
    loadToLog_->setCheckable(true);
    loadToLog_->setChecked(QSettings().value("loadMessagesToLog", true).toBool());
    connect(loadToLog_, &QAction::toggled, this, &StudioWindow::SetLoadMessagesToLog);

    QToolBar* tools = addToolBar(tr("Main"));
    tools->setObjectName("mainToolBar");
    for (const char* name : {"actionNew", "actionOpen", "actionSave"}) {
        tools->addAction(findChild<QAction*>(name));
    }
    tools->addSeparator();
    tools->addAction(undo);
    tools->addAction(redo);
    tools->addSeparator();
    for (const char* name : {"actionZoomIn", "actionZoomOut", "actionZoomFit"}) {
        tools->addAction(findChild<QAction*>(name));
    }
    tools->addSeparator();
    findField_ = new QLineEdit(tools);
    findField_->setObjectName("find");
    findField_->setPlaceholderText(tr("Find block (Ctrl+F)"));
    findField_->setClearButtonEnabled(true);
    findField_->setMaximumWidth(220);
    connect(findField_, &QLineEdit::returnPressed, this, [this] { FindBlock(findField_->text()); });
    tools->addWidget(findField_);
    BuildHelp();
}

// ---- Steps --------------------------------------------------------------------------------------

}  // namespace zerbin::studio
