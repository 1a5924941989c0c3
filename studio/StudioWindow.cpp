#include "studio/StudioWindow.h"

#include <fstream>
#include <utility>

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeySequence>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QProgressDialog>
#include <QSettings>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QUndoStack>

#include "studio/BlockItem.h"
#include "studio/BytesDock.h"
#include "studio/CanvasScene.h"
#include "studio/ComponentLibrary.h"
#include "studio/GuardedCall.h"
#include "studio/Palette.h"
#include "studio/ParametersDock.h"

namespace zerbin::studio {
namespace {

constexpr const char* kTitle = "Zerbin Studio";
constexpr int kRecentFiles = 6;

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

std::shared_ptr<const pugi::xml_document> ReadDocument(const QString& file, std::string* error) {
    auto document = std::make_shared<pugi::xml_document>();
    const pugi::xml_parse_result result = document->load_file(file.toStdString().c_str());
    if (!result) {
        if (error != nullptr) {
            *error = std::string(result.description()) + " (at byte " +
                     std::to_string(result.offset) + ")";
        }
        return nullptr;
    }
    return document;
}

// A project's file is an XML document; a name given without an extension gets that one.
QString WithProjectExtension(const QString& name) {
    return QFileInfo(name).suffix().isEmpty() ? name + ".xml" : name;
}

}  // namespace

template <typename Body>
bool StudioWindow::Step(const std::string& what, Body&& body) {
    if (busy_ == 0) {
        stepName_ = what;
    }
    ++busy_;
    const bool done = GuardedCall(what, std::forward<Body>(body));
    --busy_;
    if (busy_ == 0) {
        if (progress_ != nullptr) {
            progress_->deleteLater();
            progress_ = nullptr;
        }
        if (scene_ != nullptr) {
            scene_->FitIndex();
        }
    }
    if (busy_ == 0 && (saveWanted_ || !saveAsWanted_.isEmpty())) {
        const QString as = std::exchange(saveAsWanted_, QString());
        std::exchange(saveWanted_, false) ? Save() : SaveProjectAs(as);
    }
    return done;
}

StudioWindow::StudioWindow(QWidget* parent)
    : QMainWindow(parent), log_(std::make_shared<MessageLog>()), undo_(new QUndoStack(this)) {
    setObjectName("studio");
    BlockFactory::UseMessageSink(log_);
    BlockFactory::UseEventPump(true);
    const std::filesystem::path data = BlockFactory::ShippedDataFolder();
    factory_.UseLibrary(data / "library");
    std::string error;
    dictionary_ = ReadDocument(Q((data / "snvts.xml").string()), &error);
    ownerDevice_ = ReadDocument(Q((data / "devices" / "Controller.xml").string()), &error);

    palette_ = new Palette;
    bytes_ = new BytesDock(this);
    parameters_ = new ParametersDock(this);
    logDock_ = new MessageLogDock(this);
    log_->SetListener([this](const LoggedMessage& entry) { logDock_->Append(entry); });

    auto* paletteDock = new QDockWidget(tr("Library"), this);
    paletteDock->setObjectName("library");
    paletteDock->setWidget(palette_);
    addDockWidget(Qt::LeftDockWidgetArea, paletteDock);
    addDockWidget(Qt::RightDockWidgetArea, parameters_);
    addDockWidget(Qt::RightDockWidgetArea, bytes_);
    addDockWidget(Qt::BottomDockWidgetArea, logDock_);
    resizeDocks({paletteDock}, {250}, Qt::Horizontal);
    resizeDocks({parameters_}, {360}, Qt::Horizontal);
    resizeDocks({logDock_}, {120}, Qt::Vertical);
    resizeDocks({parameters_, bytes_}, {300, 330}, Qt::Vertical);

    MakeProject();
    palette_->Fill(factory_);
    connect(palette_, &Palette::placeRequested, this, [this](const std::string& type) {
        PlaceBlock(type, view_->mapToScene(view_->viewport()->rect().center()));
    });
    connect(palette_, &Palette::datasheetRequested, this, [this](const std::string& type) {
        GuardedCall("open the datasheet", [&] {
            const std::shared_ptr<IAppObject> block = factory_.CreateBlock();
            int32_t errorCode = 0;
            block->IAppObject_Init(type, errorCode);
            log_->SetBlock(Q(type));
            block->IAppObject_ViewDatasheet(static_cast<int64_t>(winId()));
            block->IAppObject_Destroy();
        });
    });
    connect(parameters_, &ParametersDock::valueEdited, this, &StudioWindow::SetValue);
    connect(undo_, &QUndoStack::cleanChanged, this, &StudioWindow::UpdateTitle);
    connect(undo_, &QUndoStack::indexChanged, this, [this] {
        bytes_->Refresh();
        parameters_->Refresh();
    });

    BuildActions();
    UpdateTitle();
    libraryLabel_ = new QLabel(this);
    statusBar()->addPermanentWidget(libraryLabel_);
    ShowLibrary();
}

StudioWindow::~StudioWindow() {
    // No event may run while the blocks and their windows go: one that did could delete
    // again what the teardown deletes.
    BlockFactory::UseEventPump(false);
    // The blocks go before the window's docks and the sink that they may still tell.
    bytes_->ShowBlock(nullptr);
    parameters_->ShowBlock({}, nullptr);
    undo_->clear();
    delete scene_;
    scene_ = nullptr;
    delete project_;
    project_ = nullptr;
    log_->SetListener({});
}

void StudioWindow::MakeProject() {
    const bool hadProject = project_ != nullptr;
    if (hadProject) {
        bytes_->ShowBlock(nullptr);
        parameters_->ShowBlock({}, nullptr);
        undo_->clear();
        view_->setScene(nullptr);
        delete scene_;
        delete project_;
    }
    project_ = new StudioProject(factory_, dictionary_, ownerDevice_, this);
    project_->SetContextHook([this](const std::string& block) { log_->SetBlock(Q(block)); });
    scene_ = new CanvasScene(*project_, this);
    // One view for the window's life: a new central widget would lose the docks' sizes.
    if (view_ == nullptr) {
        view_ = new CanvasView(scene_);
        view_->setObjectName("canvas");
        setCentralWidget(view_);
        connect(view_, &CanvasView::placeRequested, this, &StudioWindow::PlaceBlock);
    } else {
        view_->setScene(scene_);
        view_->SetZoom(1.0);
    }
    states_.clear();
    pending_.clear();
    selected_.clear();

    connect(scene_, &CanvasScene::wireRequested, this, &StudioWindow::RequestWire);
    connect(scene_, &CanvasScene::blocksMoved, this, [this](const std::vector<BlockMove>& moves) {
        Step("move the blocks", [&] { undo_->push(new MoveCommand(*project_, moves)); });
    });
    connect(scene_, &CanvasScene::renameRequested, this,
            [this](const std::string& key, const std::string& name) {
                Step("rename the block", [&] {
                    undo_->push(new RenameCommand(
                        *project_, key, project_->Block(key)->IAppObject_UserName(), name));
                });
            });
    connect(scene_, &CanvasScene::showRequested, this, &StudioWindow::ShowParameters);
    connect(scene_, &QGraphicsScene::selectionChanged, this, &StudioWindow::OnSelectionChanged);
    connect(project_, &StudioProject::cleared, this, [this] {
        states_.clear();
        pending_.clear();
        SelectBlock({});
    });
    connect(project_, &StudioProject::loaded, this, [this] { OnSelectionChanged(); });
    connect(project_, &StudioProject::blockChanged, this, [this](const std::string& key) {
        RememberState(key);
        if (key == selected_) {
            bytes_->Refresh();
        }
    });
    connect(project_, &StudioProject::blockRemoved, this, [this](const std::string& key) {
        states_.erase(key);
        if (key == selected_) {
            SelectBlock({});
        }
    });
    auto wireChanged = [this](const Wire& wire) {
        RememberState(wire.source);
        RememberState(wire.target);
    };
    connect(project_, &StudioProject::wireAdded, this, wireChanged);
    connect(project_, &StudioProject::wireRemoved, this, wireChanged);
    connect(project_, &StudioProject::valuesChangedOutside, this,
            &StudioWindow::OnValuesChangedOutside);
    connect(project_, &StudioProject::progress, this, &StudioWindow::ShowProgress);
}

void StudioWindow::ShowProgress(int percent) {
    if (busy_ == 0) {
        return;
    }
    if (progress_ == nullptr) {
        // Not modal: a modal one would serve the user's input as it moves. The step's event
        // pump keeps input waiting and lets the bar be drawn.
        progress_ = new QProgressDialog(this);
        progress_->setObjectName("progress");
        progress_->setLabelText(tr("Please wait: %1…").arg(Q(stepName_)));
        progress_->setCancelButton(nullptr);
        progress_->setRange(0, 100);
        progress_->setMinimumDuration(400);
        progress_->setValue(0);
    }
    progress_->setValue(percent);
}

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
    recentMenu_ = file->addMenu(tr("Open &recent"));
    FillRecent();
    add(file, "actionSave", tr("&Save"), QKeySequence::Save, [this] { Save(); });
    add(file, "actionSaveAs", tr("Save &as..."), QKeySequence::SaveAs, [this, projects] {
        const QString name =
            QFileDialog::getSaveFileName(this, tr("Save project"), file_, projects);
        if (!name.isEmpty()) {
            SaveProjectAs(name);
        }
    });
    file->addSeparator();
    add(file, "actionOpenLibrary", tr("Open library &folder..."), QKeySequence(), [this] {
        const QString folder = QFileDialog::getExistingDirectory(this, tr("Block library"),
                                                                 Q(factory_.Library().string()));
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
    file->addSeparator();
    add(file, "actionQuit", tr("&Quit"), QKeySequence::Quit, [this] { close(); });

    QMenu* edit = menuBar()->addMenu(tr("&Edit"));
    QAction* undo = add(edit, "actionUndo", tr("&Undo"), QKeySequence::Undo,
                        [this] { Step("undo", [this] { undo_->undo(); }); });
    QAction* redo = add(edit, "actionRedo", tr("&Redo"), QKeySequence::Redo,
                        [this] { Step("redo", [this] { undo_->redo(); }); });
    undo->setEnabled(false);
    redo->setEnabled(false);
    connect(undo_, &QUndoStack::canUndoChanged, undo, &QAction::setEnabled);
    connect(undo_, &QUndoStack::canRedoChanged, redo, &QAction::setEnabled);
    edit->addSeparator();
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

    QMenu* view = menuBar()->addMenu(tr("&View"));
    add(view, "actionZoomIn", tr("Zoom &in"), QKeySequence::ZoomIn,
        [this] { view_->ZoomBy(1.25); });
    add(view, "actionZoomOut", tr("Zoom &out"), QKeySequence::ZoomOut,
        [this] { view_->ZoomBy(1 / 1.25); });
    add(view, "actionZoomFit", tr("Zoom to &fit"), QKeySequence(Qt::CTRL | Qt::Key_0),
        [this] { view_->ZoomToFit(); });
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
}

// ---- Steps --------------------------------------------------------------------------------------

std::string StudioWindow::PlaceBlock(const std::string& type, QPointF scenePos) {
    std::string key;
    Step("place the block", [&] {
        auto* command = new PlaceCommand(*project_, type, scenePos);
        undo_->push(command);
        key = command->Key();
    });
    if (!key.empty()) {
        SelectBlock(key);
    }
    return key;
}

bool StudioWindow::RequestWire(const Wire& wire) {
    const std::string why = project_->WhyNotConnect(wire);
    if (!why.empty()) {
        log_->SetBlock(Q(project_->Block(wire.target)
                             ? project_->Block(wire.target)->IAppObject_UserName()
                             : wire.target));
        ShowMessage(why, kTitle, MessageIcon::Exclamation);
        return false;
    }
    return Step("connect the wire", [&] { undo_->push(new WireCommand(*project_, wire, true)); });
}

void StudioWindow::SetValue(const std::string& key, const std::string& attribute,
                            const std::string& value) {
    if (!project_->Block(key)) {
        return;
    }
    Step("set " + attribute, [&] {
        const BlockState before = StateOf(*project_, key);
        project_->WriteValue(key, attribute, value);
        const BlockState after = StateOf(*project_, key);
        if (before.values != after.values || before.wires != after.wires) {
            undo_->push(new ValuesCommand(*project_, key, before, after,
                                          tr("Set %1 to %2").arg(Q(attribute), Q(value))));
        }
    });
    parameters_->Refresh();
}

void StudioWindow::DeleteSelection() {
    std::vector<std::string> keys = scene_->SelectedBlocks();
    std::vector<Wire> wires = scene_->SelectedWires();
    // Once, rather than once for each selected item as it goes.
    scene_->clearSelection();
    if (!keys.empty() || !wires.empty()) {
        Step("delete",
             [&] { undo_->push(new DeleteCommand(*project_, std::move(keys), std::move(wires))); });
    }
}

void StudioWindow::SelectBlock(const std::string& key) {
    scene_->clearSelection();
    if (BlockItem* item = scene_->Item(key)) {
        item->setSelected(true);
    } else {
        OnSelectionChanged();
    }
}

void StudioWindow::OnSelectionChanged() {
    if (scene_ == nullptr) {
        return;
    }
    const std::vector<std::string> keys = scene_->SelectedBlocks();
    selected_ = keys.size() == 1 ? keys.front() : std::string();
    const std::shared_ptr<IAppObject> block = project_->Block(selected_);
    GuardedCall("show the block", [&] {
        bytes_->ShowBlock(block);
        parameters_->ShowBlock(selected_, block);
    });
}

void StudioWindow::ShowParameters(const std::string& key) {
    const std::shared_ptr<IAppObject> block = project_->Block(key);
    if (!block) {
        return;
    }
    // From now on the block's editors may write; keep its state to undo what they write.
    GuardedCall("show the parameters", [&] {
        states_[key] = StateOf(*project_, key);
        log_->SetBlock(Q(block->IAppObject_UserName()));
        block->IAppObject_Show(BlockFactory::HostWindow(this));
    });
}

void StudioWindow::RememberState(const std::string& key) {
    if (states_.count(key) != 0 && pending_.count(key) == 0 && project_->Block(key)) {
        states_[key] = StateOf(*project_, key);
    }
}

void StudioWindow::OnValuesChangedOutside(const std::string& key) {
    if (pending_.count(key) != 0) {
        return;
    }
    if (states_.count(key) == 0) {
        // A block whose editors were never opened here: its state from before is unknown,
        // so the write can't become a step. Start watching it now.
        states_[key] = StateOf(*project_, key);
        return;
    }
    pending_[key] = states_[key];
    // One step for everything that one write sets off, recorded once the write is over.
    QTimer::singleShot(0, this, [this, key] {
        const auto found = pending_.find(key);
        if (found == pending_.end()) {
            return;
        }
        const BlockState before = found->second;
        pending_.erase(found);
        if (!project_->Block(key)) {
            return;
        }
        const BlockState after = StateOf(*project_, key);
        states_[key] = after;
        if (before.values != after.values || before.wires != after.wires) {
            GuardedCall("record the edit", [&] {
                undo_->push(new ValuesCommand(
                    *project_, key, before, after,
                    tr("Edit %1").arg(Q(project_->Block(key)->IAppObject_UserName()))));
            });
        }
    });
}

// ---- Files ----------------------------------------------------------------------------------

void StudioWindow::NewProject() {
    MakeProject();
    file_.clear();
    usUnits_->setChecked(project_->Settings().usUnits);
    shortFloat_->setChecked(project_->Settings().shortFloat);
    UpdateTitle();
}

bool StudioWindow::OpenProject(const QString& file) {
    // Read whole before the current project goes: a file that is no project changes nothing.
    std::string why;
    std::shared_ptr<const pugi::xml_document> document;
    GuardedCall("open the project",
                [&] { document = StudioProject::ReadFile(file.toStdString(), &why); });
    if (!document) {
        if (!why.empty()) {
            log_->SetBlock({});
            ShowMessage("Cannot open the project: " + why + ".", kTitle, MessageIcon::Critical);
        }
        return false;
    }
    MakeProject();
    log_->SetQuiet(loadToLog_->isChecked());
    // The canvas is made once the project is whole: none of the project's steps on the way
    // has to be drawn.
    scene_->Follow(false);
    const bool read = Step("open the project", [&] {
        project_->Load(*document);
        scene_->Follow(true);
    });
    log_->SetQuiet(false);
    log_->SetBlock({});
    if (!read) {
        // Half a project is none: start afresh rather than let it be saved over the file.
        NewProject();
        return false;
    }
    file_ = file;
    usUnits_->setChecked(project_->Settings().usUnits);
    shortFloat_->setChecked(project_->Settings().shortFloat);
    AddRecent(file);
    undo_->clear();
    UpdateTitle();
    view_->ZoomToFit();
    if (project_->MissingBlocks() > 0) {
        statusBar()->showMessage(
            tr("%n block(s) of types the library lacks are kept but not shown.", nullptr,
               project_->MissingBlocks()));
    }
    return true;
}

bool StudioWindow::SaveProjectAs(const QString& name) {
    const QString file = WithProjectExtension(name);
    if (busy_ > 0) {
        // Saved once the running step is whole, never in its middle.
        saveAsWanted_ = file;
        return false;
    }
    std::string why;
    bool written = false;
    GuardedCall("save the project",
                [&] { written = project_->WriteFile(file.toStdString(), &why); });
    if (!written) {
        return !why.empty() && OfferSaveAs(why);
    }
    file_ = file;
    undo_->setClean();
    AddRecent(file);
    UpdateTitle();
    return true;
}

bool StudioWindow::OfferSaveAs(const std::string& why) {
    log_->SetBlock({});
    const int answer = ShowMessage("The project was not saved: " + why +
                                       ".\n\nThe file on disk is as it was. Save the project "
                                       "under another name?",
                                   kTitle, MessageIcon::Critical, MessageButtons::YesNo);
    if (answer != kMessageYes) {
        return false;
    }
    const QString name =
        askSaveName_ ? askSaveName_()
                     : QFileDialog::getSaveFileName(this, tr("Save project"), file_,
                                                    tr("Zerbin projects (*.xml);;All files (*)"));
    return !name.isEmpty() && SaveProjectAs(name);
}

bool StudioWindow::Save() {
    if (busy_ > 0) {
        saveWanted_ = true;
        return false;
    }
    if (file_.isEmpty()) {
        const QString name = QFileDialog::getSaveFileName(
            this, tr("Save project"), {}, tr("Zerbin projects (*.xml);;All files (*)"));
        return !name.isEmpty() && SaveProjectAs(name);
    }
    return SaveProjectAs(file_);
}

bool StudioWindow::ExportImages(const QString& file) {
    std::ofstream out(file.toStdString(), std::ios::binary);
    out << project_->ImagesText();
    out.close();
    if (!out) {
        ShowMessage("Cannot write '" + file.toStdString() + "'.", kTitle, MessageIcon::Critical);
        return false;
    }
    return true;
}

bool StudioWindow::ExportForm(const QString& file, bool simulator) {
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("Project");
    for (const std::string& key : project_->BlockKeys()) {
        IAppObject& block = *project_->Block(key);
        if (simulator) {
            block.IAppObject_XMLSaveSim(root, document);
        } else {
            block.IAppObject_XMLSaveForInteroperability(root, document);
        }
    }
    if (!document.save_file(file.toStdString().c_str(), "  ")) {
        ShowMessage("Cannot write '" + file.toStdString() + "'.", kTitle, MessageIcon::Critical);
        return false;
    }
    return true;
}

bool StudioWindow::OpenLibrary(const QString& folder) {
    if (!MaybeSave()) {
        return false;
    }
    return Step("open the library", [&] {
        factory_.UseLibrary(folder.toStdString());
        palette_->Fill(factory_);
        ShowLibrary();
        NewProject();
    });
}

bool StudioWindow::OpenDictionary(const QString& file) {
    std::string error;
    std::shared_ptr<const pugi::xml_document> document = ReadDocument(file, &error);
    if (!document) {
        ShowMessage("Cannot read the dictionary '" + file.toStdString() + "': " + error, kTitle,
                    MessageIcon::Critical);
        return false;
    }
    if (!MaybeSave()) {
        return false;
    }
    dictionary_ = std::move(document);
    NewProject();
    return true;
}

bool StudioWindow::OpenOwnerDevice(const QString& file) {
    std::string error;
    std::shared_ptr<const pugi::xml_document> document = ReadDocument(file, &error);
    if (!document) {
        ShowMessage("Cannot read the owner device document '" + file.toStdString() + "': " + error,
                    kTitle, MessageIcon::Critical);
        return false;
    }
    if (!MaybeSave()) {
        return false;
    }
    ownerDevice_ = std::move(document);
    NewProject();
    return true;
}

void StudioWindow::SetLoadMessagesToLog(bool log) {
    loadToLog_->setChecked(log);
    QSettings().setValue("loadMessagesToLog", log);
}

bool StudioWindow::MaybeSave() {
    if (undo_->isClean()) {
        return true;
    }
    log_->SetBlock({});
    switch (ShowMessage("The project has unsaved changes. Save them?", kTitle,
                        MessageIcon::Question, MessageButtons::YesNoCancel)) {
        case kMessageYes:
            return Save();
        case kMessageNo:
            return true;
        default:
            return false;
    }
}

void StudioWindow::closeEvent(QCloseEvent* event) {
    if (MaybeSave()) {
        BlockFactory::UseEventPump(false);
        event->accept();
    } else {
        event->ignore();
    }
}

// The folder's name is enough to know the library by; where it and the component live is in
// the tip.
void StudioWindow::ShowLibrary() {
    const std::filesystem::path& library = factory_.Library();
    const std::size_t types = factory_.Types().size();
    libraryLabel_->setText(
        tr("Block library %1/%2: %3 %4")
            .arg(Q(library.parent_path().filename().string()), Q(library.filename().string()))
            .arg(types)
            .arg(types == 1 ? tr("type") : tr("types")));
    libraryLabel_->setToolTip(tr("Library: %1\nComponent: %2")
                                  .arg(Q(library.string()), Q(ComponentLibrary::File().string())));
}

void StudioWindow::UpdateTitle() {
    const QString name = file_.isEmpty() ? tr("untitled") : QFileInfo(file_).fileName();
    setWindowTitle(QString("%1[*] — %2").arg(name, kTitle));
    setWindowModified(!undo_->isClean());
}

void StudioWindow::AddRecent(const QString& file) {
    QSettings settings;
    QStringList files = settings.value("recentFiles").toStringList();
    const QString path = QFileInfo(file).absoluteFilePath();
    files.removeAll(path);
    files.prepend(path);
    while (files.size() > kRecentFiles) {
        files.removeLast();
    }
    settings.setValue("recentFiles", files);
    FillRecent();
}

void StudioWindow::FillRecent() {
    recentMenu_->clear();
    const QStringList files = QSettings().value("recentFiles").toStringList();
    for (const QString& file : files) {
        recentMenu_->addAction(file, this, [this, file] {
            if (MaybeSave()) {
                OpenProject(file);
            }
        });
    }
    recentMenu_->setEnabled(!files.isEmpty());
}

void StudioWindow::ApplySettings(bool usUnits, bool shortFloat) {
    ProjectSettings next = project_->Settings();
    next.usUnits = usUnits;
    next.shortFloat = shortFloat;
    Step("change the project settings",
         [&] { undo_->push(new SettingsCommand(*project_, project_->Settings(), next)); });
    usUnits_->setChecked(project_->Settings().usUnits);
    shortFloat_->setChecked(project_->Settings().shortFloat);
    OnSelectionChanged();
}

}  // namespace zerbin::studio
