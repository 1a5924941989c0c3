// The studio's main window: palette, canvas, parameters, bytes and message log around one
// project, with the File, Edit, View and Project menus. Every change the user makes goes
// through the undo stack.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include <QMainWindow>
#include <QPointF>

#include <pugixml.hpp>

#include "studio/Autosave.h"
#include "studio/BlockFactory.h"
#include "studio/EditRecorder.h"
#include "studio/MessageLog.h"
#include "studio/RecentFiles.h"
#include "studio/StudioProject.h"
#include "studio/UndoCommands.h"

class QLabel;
class QLineEdit;
class QPrinter;
class QMenu;
class QProgressDialog;
class QPainter;
class QUndoStack;

namespace zerbin::studio {

class BytesDock;
class CanvasScene;
class CanvasView;
class MessageLogDock;
class OverviewDock;
class Palette;
class ParametersDock;

class StudioWindow : public QMainWindow {
    Q_OBJECT

public:
    // Opens the shipped library, dictionary and owner device document.
    explicit StudioWindow(QWidget* parent = nullptr);
    ~StudioWindow() override;

    StudioProject& Project() { return *project_; }
    CanvasScene& Scene() { return *scene_; }
    CanvasView& View() { return *view_; }
    QUndoStack& UndoStack() { return *undo_; }
    MessageLog& Log() { return *log_; }
    MessageLogDock& LogDock() { return *logDock_; }
    BytesDock& Bytes() { return *bytes_; }
    ParametersDock& Parameters() { return *parameters_; }
    Palette& BlockPalette() { return *palette_; }
    OverviewDock& Overview() { return *overview_; }
    const QString& FileName() const { return file_; }
    // True while a step runs: a save asked for meanwhile waits until the step is whole.
    bool Busy() const { return busy_ > 0; }
    // Where a failed save's offer of Save As gets its name (a file dialog unless replaced);
    // an empty name declines.
    void SetSaveNameQuestion(std::function<QString()> ask) { askSaveName_ = std::move(ask); }

    enum class Arrangement { AlignLeft, AlignTop, SpreadAcross, SpreadDown };

public slots:
    // What the canvas's drop does: an undoable placement. Returns the new block's key.
    std::string PlaceBlock(const std::string& type, QPointF scenePos);
    // What a wire drawn on the canvas does: refused with a message when it can't be made.
    bool RequestWire(const Wire& wire);
    void SetValue(const std::string& key, const std::string& attribute, const std::string& value);
    void DeleteSelection();
    // The selected blocks with the wires among them, on the clipboard as a project's text
    // that another studio pastes as well; Cut deletes them as it copies.
    void CopySelection();
    void CutSelection();
    // The clipboard's blocks added under keys, export indexes and names of their own, moved a
    // little from the copied ones each time, and selected. One undoable step.
    void Paste();
    void DuplicateSelection();
    // The clipboard's first block's values written by name to each selected block where the
    // block has the parameter and takes the value; the rest is listed in the log.
    void PasteParameters();
    // The selected blocks' values back to their type's; names, places and wires stay.
    void ResetSelection();
    // The selected blocks whose type changed since the project was saved (all such blocks when
    // none is selected) brought to the library's type, as one undoable step; what could not be
    // mapped is listed in the log.
    void UpdateTypes();
    void SelectBlock(const std::string& key);
    void SelectBlocks(const std::vector<std::string>& keys);
    // The next block after the last one found whose user name, type or key holds the text
    // (in any case), selected and centred in view; false, told in the status bar, when none.
    bool FindBlock(const QString& text);
    // The selected blocks lined up on their left edges or their tops, or spread evenly from
    // the first to the last across or down: one undoable move.
    void Arrange(Arrangement arrangement);
    // The drawing as PDF, SVG or PNG by the file's extension, written whole or not at all.
    bool ExportDrawing(const QString& file);
    // The drawing on the printer's pages, scaled to fit one page.
    void PrintDrawing(QPrinter& printer);
    // Opens the block's parameter list (IAppObject_Show).
    void ShowParameters(const std::string& key);
    // The file actions after their dialogs.
    bool OpenProject(const QString& file);
    bool SaveProjectAs(const QString& file);
    bool ExportImages(const QString& file);
    bool ExportForm(const QString& file, bool simulator);
    bool OpenLibrary(const QString& folder);
    bool OpenDictionary(const QString& file);
    bool OpenOwnerDevice(const QString& file);
    void NewProject();
    void SetLoadMessagesToLog(bool log);
    // Asks what to do with unsaved changes; false when the user cancels.
    bool MaybeSave();
    // When the project (empty: the untitled work) has a recovery file newer than itself,
    // offers to bring back the work it holds; true when it was brought back.
    bool OfferRecovery(const QString& project);
    Autosave& Recovery() { return *autosave_; }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void BuildActions();
    void BuildHelp();
    // Renders the drawing (every block and wire, nothing selected) into the painter's area.
    void RenderDrawing(QPainter& painter, const QRectF& target);
    void MakeProject();
    void OnSelectionChanged();
    void UpdateTitle();
    // Shows how far a long step has got, once it has run a moment.
    void ShowProgress(int percent);
    void ShowLibrary();
    bool Save();
    bool OfferSaveAs(const std::string& why);
    void ApplySettings(bool usUnits, bool shortFloat);
    // A new project of the document, named after file: the canvas made once it is whole.
    // False, with a new empty project, when the step failed.
    bool LoadDocument(const std::string& step, const pugi::xml_document& document,
                      const QString& file);
    // Runs one step of the user's on the project, guarded; input waits until it is over.
    bool Step(const std::string& what, const std::function<void()>& body);
    // One undoable step as a Step: done and put on the undo stack, or, when it fails halfway,
    // taken back so that the project is as it was. The window owns the command until then.
    bool Do(const std::string& what, QUndoCommand* command);
    // Writes values into each of the blocks as one undoable step named text; write gives the
    // values a block did not take, "NAME: why", which are told in the log.
    void WriteBlocks(const std::string& what, const QString& text,
                     const std::vector<std::string>& keys,
                     const std::function<std::vector<std::string>(const std::string&)>& write);
    void PasteText(const std::string& text, const QString& step);

    BlockFactory factory_;
    std::shared_ptr<MessageLog> log_;
    std::shared_ptr<const pugi::xml_document> dictionary_;
    std::shared_ptr<const pugi::xml_document> ownerDevice_;
    StudioProject* project_ = nullptr;
    CanvasScene* scene_ = nullptr;
    CanvasView* view_ = nullptr;
    QUndoStack* undo_ = nullptr;
    Palette* palette_ = nullptr;
    BytesDock* bytes_ = nullptr;
    ParametersDock* parameters_ = nullptr;
    MessageLogDock* logDock_ = nullptr;
    OverviewDock* overview_ = nullptr;
    std::unique_ptr<RecentFiles> recent_;
    Autosave* autosave_ = nullptr;
    QAction* usUnits_ = nullptr;
    QAction* shortFloat_ = nullptr;
    QAction* loadToLog_ = nullptr;
    QLabel* libraryLabel_ = nullptr;
    QLabel* zoomLabel_ = nullptr;
    QLineEdit* findField_ = nullptr;
    QAction* snap_ = nullptr;
    std::string found_;
    QString file_;
    std::string selected_;
    // Each block's values and wires as the last step left them, so that a write made in an
    // editor becomes an undoable step with its state from before.
    EditRecorder* recorder_ = nullptr;  // goes with the project
    int busy_ = 0;
    std::string stepName_;
    QProgressDialog* progress_ = nullptr;
    // How many times the clipboard's blocks were pasted since they were copied: each paste
    // lands a step further from the copied blocks.
    int pastes_ = 0;
    bool saveWanted_ = false;
    QString saveAsWanted_;
    std::function<QString()> askSaveName_;
};

}  // namespace zerbin::studio
