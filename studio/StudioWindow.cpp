#include "studio/StudioWindow.h"

#include <cmath>
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
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QProgressDialog>
#include <QSettings>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QUndoStack>
#include <QVBoxLayout>

#include "studio/BlockItem.h"
#include "studio/BytesDock.h"
#include "studio/CanvasScene.h"
#include "studio/ComponentLibrary.h"
#include "studio/GuardedCall.h"
#include "studio/OverviewDock.h"
#include "studio/Palette.h"
#include "studio/ParametersDock.h"

namespace zerbin::studio {
namespace {

constexpr const char* kTitle = "Zerbin Studio";

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

// A project's file is an XML document; a name given without an extension gets that one.
QString WithProjectExtension(const QString& name) {
    return QFileInfo(name).suffix().isEmpty() ? name + ".xml" : name;
}

}  // namespace

bool StudioWindow::Step(const std::string& what, const std::function<void()>& body) {
    if (busy_ == 0) {
        stepName_ = what;
    }
    ++busy_;
    const bool done = GuardedCall(what, body);
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

bool StudioWindow::Do(const std::string& what, QUndoCommand* command) {
    std::unique_ptr<QUndoCommand> owned(command);
    return Step(what, [&] {
        try {
            undo_->push(owned.get());
            owned.release();
        } catch (...) {
            GuardedCall("take back the step that failed", [&] { owned->undo(); });
            throw;
        }
    });
}

StudioWindow::StudioWindow(QWidget* parent)
    : QMainWindow(parent), log_(std::make_shared<MessageLog>()), undo_(new QUndoStack(this)) {
    setObjectName("studio");
    BlockFactory::UseMessageSink(log_);
    BlockFactory::UseEventPump(true);
    const std::filesystem::path data = BlockFactory::ShippedDataFolder();
    factory_.UseLibrary(data / "library");
    std::string error;
    dictionary_ = StudioProject::ReadDocument(data / "snvts.xml", "dictionary", &error);
    ownerDevice_ =
        StudioProject::ReadDocument(data / "devices" / "Controller.xml", "device document", &error);

    palette_ = new Palette;
    bytes_ = new BytesDock(this);
    parameters_ = new ParametersDock(this);
    logDock_ = new MessageLogDock(this);
    overview_ = new OverviewDock(this);
    log_->SetListener([this](const LoggedMessage& entry) { logDock_->Append(entry); });

    auto* paletteDock = new QDockWidget(tr("Library"), this);
    paletteDock->setObjectName("library");
    auto* paletteBox = new QWidget(paletteDock);
    auto* search = new QLineEdit(paletteBox);
    search->setObjectName("paletteSearch");
    search->setPlaceholderText(tr("Search blocks"));
    search->setClearButtonEnabled(true);
    connect(search, &QLineEdit::textChanged, palette_, &Palette::Filter);
    auto* paletteLayout = new QVBoxLayout(paletteBox);
    paletteLayout->setContentsMargins(0, 0, 0, 0);
    paletteLayout->addWidget(search);
    paletteLayout->addWidget(palette_);
    paletteDock->setWidget(paletteBox);
    addDockWidget(Qt::LeftDockWidgetArea, paletteDock);
    addDockWidget(Qt::RightDockWidgetArea, parameters_);
    addDockWidget(Qt::RightDockWidgetArea, bytes_);
    addDockWidget(Qt::BottomDockWidgetArea, logDock_);
    addDockWidget(Qt::LeftDockWidgetArea, overview_);
    resizeDocks({paletteDock}, {250}, Qt::Horizontal);
    resizeDocks({parameters_}, {360}, Qt::Horizontal);
    resizeDocks({logDock_}, {120}, Qt::Vertical);
    resizeDocks({paletteDock, overview_}, {470, 170}, Qt::Vertical);
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

    autosave_ = new Autosave([this] { return !undo_->isClean(); },
                             [this] { return project_->Text(); }, this);
    BuildActions();
    UpdateTitle();
    zoomLabel_ = new QLabel(tr("100 %"), this);
    zoomLabel_->setObjectName("zoom");
    zoomLabel_->setToolTip(tr("Zoom"));
    statusBar()->addPermanentWidget(zoomLabel_);
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
    scene_->SetSnap(snap_ == nullptr || snap_->isChecked());
    found_.clear();
    // One view for the window's life: a new central widget would lose the docks' sizes.
    if (view_ == nullptr) {
        view_ = new CanvasView(scene_);
        view_->setObjectName("canvas");
        setCentralWidget(view_);
        connect(view_, &CanvasView::placeRequested, this, &StudioWindow::PlaceBlock);
        connect(view_, &CanvasView::zoomed, this, [this](qreal zoom) {
            if (zoomLabel_ != nullptr) {
                zoomLabel_->setText(tr("%1 %").arg(std::lround(zoom * 100)));
            }
        });
    } else {
        view_->setScene(scene_);
        view_->SetZoom(1.0);
    }
    if (overview_ != nullptr) {
        overview_->Watch(scene_, view_);
        for (const auto signal : {&StudioProject::blockAdded, &StudioProject::blockRemoved,
                                  &StudioProject::blockChanged}) {
            connect(project_, signal, overview_, &OverviewDock::Changed);
        }
        connect(project_, &StudioProject::wireAdded, overview_, &OverviewDock::Changed);
        connect(project_, &StudioProject::wireRemoved, overview_, &OverviewDock::Changed);
        connect(project_, &StudioProject::loaded, overview_, &OverviewDock::Changed);
        connect(project_, &StudioProject::cleared, overview_, &OverviewDock::Changed);
    }
    recorder_ = new EditRecorder(*project_, *undo_, project_);
    selected_.clear();

    connect(scene_, &CanvasScene::wireRequested, this, &StudioWindow::RequestWire);
    connect(scene_, &CanvasScene::blocksMoved, this, [this](const std::vector<BlockMove>& moves) {
        Do("move the blocks", new MoveCommand(*project_, moves));
    });
    connect(scene_, &CanvasScene::renameRequested, this,
            [this](const std::string& key, const std::string& name) {
                if (const std::shared_ptr<IAppObject> block = project_->Block(key)) {
                    Do("rename the block",
                       new RenameCommand(*project_, key, block->IAppObject_UserName(), name));
                }
            });
    connect(scene_, &CanvasScene::showRequested, this, &StudioWindow::ShowParameters);
    connect(scene_, &QGraphicsScene::selectionChanged, this, &StudioWindow::OnSelectionChanged);
    connect(project_, &StudioProject::cleared, this, [this] { SelectBlock({}); });
    connect(project_, &StudioProject::loaded, this, [this] { OnSelectionChanged(); });
    connect(project_, &StudioProject::blockChanged, this, [this](const std::string& key) {
        if (key == selected_) {
            bytes_->Refresh();
        }
    });
    connect(project_, &StudioProject::blockRemoved, this, [this](const std::string& key) {
        if (key == selected_) {
            SelectBlock({});
        }
    });
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

std::string StudioWindow::PlaceBlock(const std::string& type, QPointF scenePos) {
    std::string key;
    Do("place the block", new PlaceCommand(*project_, type, scene_->Snapped(scenePos), &key));
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
        log_->Note(Message{why, kTitle, MessageIcon::Exclamation, MessageButtons::Ok});
        statusBar()->showMessage(Q(why), 10000);
        return false;
    }
    return Do("connect the wire", new WireCommand(*project_, wire, true));
}

void StudioWindow::DeleteSelection() {
    std::vector<std::string> keys = scene_->SelectedBlocks();
    std::vector<Wire> wires = scene_->SelectedWires();
    // Once, rather than once for each selected item as it goes.
    scene_->clearSelection();
    if (!keys.empty() || !wires.empty()) {
        Do("delete", new DeleteCommand(*project_, std::move(keys), std::move(wires)));
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
    // With several selected, the first one's values show; a value set there goes to each.
    const std::string shown = keys.empty() ? std::string() : keys.front();
    const std::shared_ptr<IAppObject> block = project_->Block(shown);
    GuardedCall("show the block", [&] {
        bytes_->ShowBlock(block);
        parameters_->ShowBlock(shown, block);
    });
}

void StudioWindow::ShowParameters(const std::string& key) {
    const std::shared_ptr<IAppObject> block = project_->Block(key);
    if (!block) {
        return;
    }
    // From now on the block's editors may write; keep its state to undo what they write.
    GuardedCall("show the parameters", [&] {
        recorder_->Watch(key);
        log_->SetBlock(Q(block->IAppObject_UserName()));
        block->IAppObject_Show(BlockFactory::HostWindow(this));
    });
}

// ---- Files ----------------------------------------------------------------------------------

void StudioWindow::NewProject() {
    MakeProject();
    file_.clear();
    autosave_->SetProject({});
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
    log_->SetQuiet(loadToLog_->isChecked());
    const bool read = LoadDocument("open the project", *document, file);
    log_->SetQuiet(false);
    log_->SetBlock({});
    if (!read) {
        return false;
    }
    recent_->Add(file);
    UpdateTitle();
    if (project_->MissingBlocks() > 0) {
        statusBar()->showMessage(
            tr("%n block(s) of types the library lacks are kept and drawn in grey.", nullptr,
               project_->MissingBlocks()));
    }
    OfferRecovery(file);
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
    // Saved: what the recovery held is in the file now.
    autosave_->Discard();
    file_ = file;
    autosave_->SetProject(file);
    undo_->setClean();
    recent_->Add(file);
    UpdateTitle();
    return true;
}

bool StudioWindow::OfferRecovery(const QString& project) {
    if (!Autosave::HasRecovery(project)) {
        return false;
    }
    const QString recovery = Autosave::RecoveryOf(project);
    log_->SetBlock({});
    const int answer = ShowMessage(
        tr("Zerbin Studio stopped before %1 was saved. A recovery of the work, from %2, is in "
           "%3.\n\nBring back that work?")
            .arg(project.isEmpty() ? tr("the untitled project") : QFileInfo(project).fileName(),
                 QFileInfo(recovery).lastModified().toString(Qt::TextDate), recovery)
            .toStdString(),
        kTitle, MessageIcon::Question, MessageButtons::YesNo);
    if (answer != kMessageYes) {
        return false;
    }
    std::string why;
    std::shared_ptr<const pugi::xml_document> document;
    GuardedCall("read the recovery",
                [&] { document = StudioProject::ReadFile(recovery.toStdString(), &why); });
    if (!document) {
        ShowMessage("Cannot bring back the work: " + why + ".", kTitle, MessageIcon::Critical);
        return false;
    }
    if (!LoadDocument("bring back the work", *document, project)) {
        return false;
    }
    // Not saved yet: the title says so until the user saves the work into the project.
    undo_->resetClean();
    UpdateTitle();
    return true;
}

bool StudioWindow::LoadDocument(const std::string& step, const pugi::xml_document& document,
                                const QString& file) {
    MakeProject();
    // The canvas is made once the project is whole: none of the project's steps on the way
    // has to be drawn.
    scene_->Follow(false);
    const bool read = Step(step, [&] {
        project_->Load(document);
        scene_->Follow(true);
    });
    if (!read) {
        // Half a project is none: start afresh rather than let it be saved over the file.
        NewProject();
        return false;
    }
    file_ = file;
    autosave_->SetProject(file);
    usUnits_->setChecked(project_->Settings().usUnits);
    shortFloat_->setChecked(project_->Settings().shortFloat);
    undo_->clear();
    view_->ZoomToFit();
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
    std::string why;
    if (!project_->ExportImages(file.toStdString(), &why)) {
        ShowMessage(why, kTitle, MessageIcon::Critical);
        return false;
    }
    return true;
}

bool StudioWindow::ExportForm(const QString& file, bool simulator) {
    std::string why;
    if (!project_->ExportForm(file.toStdString(), simulator, &why)) {
        ShowMessage(why, kTitle, MessageIcon::Critical);
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
    std::string why;
    std::shared_ptr<const pugi::xml_document> document =
        StudioProject::ReadDocument(file.toStdString(), "dictionary", &why);
    if (!document) {
        ShowMessage(why, kTitle, MessageIcon::Critical);
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
    std::string why;
    std::shared_ptr<const pugi::xml_document> document =
        StudioProject::ReadDocument(file.toStdString(), "device document", &why);
    if (!document) {
        ShowMessage(why, kTitle, MessageIcon::Critical);
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
            // Let go on purpose: nothing is left to recover.
            autosave_->Discard();
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

void StudioWindow::ApplySettings(bool usUnits, bool shortFloat) {
    ProjectSettings next = project_->Settings();
    next.usUnits = usUnits;
    next.shortFloat = shortFloat;
    Do("change the project settings", new SettingsCommand(*project_, project_->Settings(), next));
    usUnits_->setChecked(project_->Settings().usUnits);
    shortFloat_->setChecked(project_->Settings().shortFloat);
    OnSelectionChanged();
}

}  // namespace zerbin::studio
