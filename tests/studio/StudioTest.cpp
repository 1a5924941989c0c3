// Scenarios of the studio as a user drives it: drop blocks from the palette, draw wires
// between terminals, move and rename on the canvas, set values, undo and redo, save and open.
#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QGraphicsPathItem>
#include <QGraphicsProxyWidget>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QScrollBar>
#include <QStandardPaths>
#include <QStatusBar>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QUndoStack>

#include <sys/resource.h>

#include <cmath>
#include <csignal>
#include <fstream>
#include <sstream>

#include "interfaces/IOutput.h"
#include "studio/BlockFactory.h"
#include "studio/BlockItem.h"
#include "studio/BytesDock.h"
#include "studio/CanvasScene.h"
#include "studio/OverviewDock.h"
#include "studio/Palette.h"
#include "studio/ParametersDock.h"
#include "studio/StudioWindow.h"
#include "studio/WireRouter.h"

using namespace zerbin;
using namespace zerbin::studio;

namespace {

QPoint ViewPoint(StudioWindow& window, QPointF scenePos) {
    return window.View().mapFromScene(scenePos);
}

QPointF TerminalCentre(StudioWindow& window, const std::string& key, const std::string& name,
                       bool output) {
    return window.Scene().TerminalPos(key, name, output).value_or(QPointF(-1e6, -1e6));
}

// Drops a palette entry on the canvas at a point of the view, as a drag from the palette ends.
std::string Drop(StudioWindow& window, const std::string& type, QPoint at) {
    QMimeData data;
    data.setData(CanvasView::kMimeType, QByteArray::fromStdString(type));
    QWidget* viewport = window.View().viewport();
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(viewport, &enter);
    QDropEvent drop(QPointF(at), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(viewport, &drop);
    const auto& keys = window.Project().BlockKeys();
    return keys.empty() ? std::string() : keys.back();
}

void DragMouse(StudioWindow& window, QPointF from, QPointF to) {
    QWidget* viewport = window.View().viewport();
    QTest::mousePress(viewport, Qt::LeftButton, {}, ViewPoint(window, from));
    QTest::mouseMove(viewport, ViewPoint(window, (from + to) / 2));
    QTest::mouseMove(viewport, ViewPoint(window, to));
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, ViewPoint(window, to));
}

void DrawWire(StudioWindow& window, const Wire& wire) {
    DragMouse(window, TerminalCentre(window, wire.source, wire.output, true),
              TerminalCentre(window, wire.target, wire.input, false));
}

WireItem* WireItemOf(StudioWindow& window, const Wire& wire) {
    for (QGraphicsItem* any : window.Scene().items()) {
        if (auto* item = qgraphicsitem_cast<WireItem*>(any); item && item->Connection() == wire) {
            return item;
        }
    }
    return nullptr;
}

bool LogHas(StudioWindow& window, const QString& text) {
    for (const LoggedMessage& entry : window.Log().Messages()) {
        if (QString::fromStdString(entry.message.text).contains(text)) {
            return true;
        }
    }
    return false;
}

std::string InputValue(StudioWindow& window, const std::string& key, const std::string& input) {
    return window.Project().Block(key)->IAppObject_Inputs()->IInputs_Item(input)->IInput_Value();
}

std::string Reference(StudioWindow& window, const std::string& key, const std::string& output) {
    const auto item = std::dynamic_pointer_cast<IDisplayItem>(
        window.Project().Block(key)->IAppObject_Outputs()->IOutputs_Item(output));
    return item->IDisplayItem_Reference();
}

std::shared_ptr<IAttribute> Attribute(StudioWindow& window, const std::string& key,
                                      const std::string& name) {
    return window.Project().Block(key)->IAppObject_Attributes()->IAttributes_Item(name);
}

std::string Value(StudioWindow& window, const std::string& key, const std::string& name) {
    return Attribute(window, key, name)->IAttribute_Value();
}

std::string FileText(const QString& file) {
    std::ifstream in(file.toStdString(), std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void Trigger(StudioWindow& window, const char* action) {
    window.findChild<QAction*>(action)->trigger();
}

// While it lives, files of this process may grow to limit bytes at most and a write beyond
// fails as on a full disk. In-process on purpose: a child forked from a process with Qt's
// threads may wait for ever on a lock one of them held. (A save killed in the middle of its
// write is the project file service's own test, in a process of one thread.)
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t limit) : previous_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &saved_);
        const rlimit size{limit, saved_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &size);
    }
    ~FileSizeLimit() { Lift(); }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

    void Lift() {
        ::setrlimit(RLIMIT_FSIZE, &saved_);
        std::signal(SIGXFSZ, previous_);
    }

private:
    void (*previous_)(int);
    rlimit saved_{};
};

}  // namespace

class StudioTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        QStandardPaths::setTestModeEnabled(true);
        QCoreApplication::setOrganizationName("ZerbinTest");
    }

    void init() {
        folder_ = std::make_unique<QTemporaryDir>();
        window_ = std::make_unique<StudioWindow>();
        // Nobody answers boxes here: every message goes to the log, answered as a user who
        // agrees would.
        window_->Log().SetPresenter(nullptr);
        window_->resize(1280, 800);
        window_->show();
        QVERIFY(QTest::qWaitForWindowExposed(window_.get()));
    }

    void cleanup() {
        window_.reset();
        folder_.reset();
    }

    void wiresAreCheckedAgainstTheInputsTypes_data() {
        QTest::addColumn<QString>("input");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("105 to a 105 input") << QString("In1") << true;
        QTest::newRow("105 to a 95,22 input") << QString("Select") << false;
    }

    // A wire dragged from an input channel's Value (SNVT_temp_p) lights the inputs of a
    // multiplexer that take it (In1: 105; Select: 95,22 does not); released a few pixels off
    // one that takes it, it lands there. A refusal is told in the status bar and the log, by
    // the types' names, and opens no box.
    void wiresAreCheckedAgainstTheInputsTypes() {
        QFETCH(QString, input);
        QFETCH(bool, accepted);
        int boxes = 0;
        window_->Log().SetPresenter([&](const Message&) {
            ++boxes;
            return kMessageOk;
        });
        const std::string sensor = Drop(*window_, "IO_CHANNEL", QPoint(120, 120));
        const std::string mux = Drop(*window_, "TYPE_MUX", QPoint(450, 120));
        const Wire wire{sensor, "Value", mux, input.toStdString()};
        QWidget* viewport = window_->View().viewport();
        const QPoint from = ViewPoint(*window_, TerminalCentre(*window_, sensor, "Value", true));
        const QPoint to =
            ViewPoint(*window_, TerminalCentre(*window_, mux, wire.input, false)) + QPoint(5, 4);
        QTest::mousePress(viewport, Qt::LeftButton, {}, from);
        QTest::mouseMove(viewport, to);
        // The wire being drawn runs from the output to the pointer.
        const QGraphicsPathItem* drawn = nullptr;
        for (QGraphicsItem* any : window_->Scene().items()) {
            if (const auto* path = qgraphicsitem_cast<const QGraphicsPathItem*>(any)) {
                drawn = path;
            }
        }
        QVERIFY(drawn != nullptr);
        QCOMPARE(QPointF(drawn->path().elementAt(0)),
                 TerminalCentre(*window_, sensor, "Value", true));
        QCOMPARE(drawn->path().currentPosition(), window_->View().mapToScene(to));
        QCOMPARE(window_->Scene().GuideOf(mux, wire.input, false) == CanvasScene::Guide::Lit,
                 accepted);
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, to);
        const auto& wires = window_->Project().Wires();
        QCOMPARE(std::find(wires.begin(), wires.end(), wire) != wires.end(), accepted);
        QCOMPARE(LogHas(*window_, "Cannot connect"), !accepted);
        QCOMPARE(window_->statusBar()->currentMessage().contains("SNVT_temp_p"), !accepted);
        QCOMPARE(boxes, 0);
        // The input's reference is the output's code, or nothing was written.
        QCOMPARE(InputValue(*window_, mux, wire.input),
                 accepted ? Reference(*window_, sensor, wire.output) : std::string());
    }

    // On an empty canvas as beside other blocks, a dropped block lands under the pointer, on
    // the grid, and the view does not move.
    void aDroppedBlockLandsUnderThePointer() {
        const std::vector<QPoint> points{{300, 200}, {80, 500}, {600, 40}};
        std::vector<std::string> keys;
        for (const QPoint& at : points) {
            keys.push_back(Drop(*window_, "THERMOSTAT", at));
        }
        for (std::size_t i = 0; i < points.size(); ++i) {
            const std::shared_ptr<IAppObject> block = window_->Project().Block(keys[i]);
            const QPointF pos(block->IAppObject_XPosition(), block->IAppObject_YPosition());
            QVERIFY((ViewPoint(*window_, pos) - points[i]).manhattanLength() <=
                    2 * CanvasScene::kGrid);
            QCOMPARE(std::fmod(pos.x(), CanvasScene::kGrid), 0.0);
        }
    }

    // Over a terminal the block names it and shows the cursor of a wire's start.
    void aTerminalNamesItselfUnderTheMouse() {
        const std::string thermostat = Drop(*window_, "THERMOSTAT", QPoint(300, 200));
        const BlockItem* item = window_->Scene().Item(thermostat);
        auto hover = [&](QPointF scenePos) {
            const QPointF at = ViewPoint(*window_, scenePos);
            QMouseEvent move(QEvent::MouseMove, at, window_->View().viewport()->mapToGlobal(at),
                             Qt::NoButton, Qt::NoButton, Qt::NoModifier);
            QCoreApplication::sendEvent(window_->View().viewport(), &move);
        };
        hover(TerminalCentre(*window_, thermostat, "Cool", true));
        QCOMPARE(item->toolTip(), QString("Cool"));
        QCOMPARE(item->cursor().shape(), Qt::CrossCursor);
        hover(item->mapToScene(QPointF(40, 50)));
        QVERIFY(item->toolTip() != "Cool");
        QVERIFY(!item->hasCursor());
    }

    // Every step is undone back to the text before it, and redone to the text after it; then
    // the project is saved and opened again with the same text and images.
    void stepsUndoRedoSaveAndReopen() {
        std::vector<std::string> texts{window_->Project().Text()};
        auto step = [&] { texts.push_back(window_->Project().Text()); };

        const std::string sensor = Drop(*window_, "IO_CHANNEL", QPoint(100, 100));
        step();
        const std::string mux = Drop(*window_, "TYPE_MUX", QPoint(400, 100));
        step();
        const std::string thermostat = Drop(*window_, "THERMOSTAT", QPoint(700, 100));
        step();
        QCOMPARE(window_->Project().BlockKeys().size(), std::size_t{3});

        DrawWire(*window_, Wire{sensor, "Value", mux, "In1"});
        step();
        const Wire muxToThermostat{mux, "Out", thermostat, "SpaceTemp"};
        DrawWire(*window_, muxToThermostat);
        step();
        QCOMPARE(window_->Project().Wires().size(), std::size_t{2});

        // An output connected to an input that can't take the new type: the block asks the
        // studio's macro view, refuses and says so; value and wires stay.
        window_->SelectBlock(mux);
        window_->Parameters().Edit("DataType", "81");
        QTest::qWait(0);
        QVERIFY(LogHas(*window_, "is not compatible with the object connections"));
        QCOMPARE(Value(*window_, mux, "DataType"), std::string("105"));
        QCOMPARE(window_->UndoStack().count(), 5);

        // Without that wire the change passes, and the wire into In1 (105 only) no longer fits.
        window_->Scene().clearSelection();
        for (QGraphicsItem* item : window_->Scene().items()) {
            if (auto* wire = qgraphicsitem_cast<WireItem*>(item)) {
                wire->setSelected(wire->Connection() == muxToThermostat);
            }
        }
        window_->findChild<QAction*>("actionDelete")->trigger();
        step();
        window_->SelectBlock(mux);
        window_->Parameters().Edit("DataType", "81");
        QTest::qWait(0);
        QCOMPARE(Value(*window_, mux, "DataType"), std::string("81"));
        QCOMPARE(window_->Project().Wires().size(), std::size_t{0});
        QCOMPARE(InputValue(*window_, mux, "In1"), std::string("0000"));
        step();

        // Move and rename on the canvas.
        const BlockItem* item = window_->Scene().Item(thermostat);
        const QPointF grip = item->mapToScene(QPointF(item->boundingRect().width() / 2, 30));
        DragMouse(*window_, grip, grip + QPointF(0, 150));
        QCOMPARE(window_->Project().Block(thermostat)->IAppObject_YPosition(), item->pos().y());
        step();
        window_->SelectBlock(thermostat);
        window_->findChild<QAction*>("actionRename")->trigger();
        QWidget* editor = nullptr;
        for (QGraphicsItem* shown : window_->Scene().items()) {
            if (auto* proxy = dynamic_cast<QGraphicsProxyWidget*>(shown)) {
                editor = proxy->widget();
            }
        }
        QVERIFY(editor != nullptr);
        QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(editor, "Zone 1");
        QTest::keyClick(editor, Qt::Key_Return);
        QCOMPARE(window_->Project().Block(thermostat)->IAppObject_UserName(),
                 std::string("Zone 1"));
        QCOMPARE(window_->UndoStack().undoText(), QStringLiteral("Rename Zone 1"));
        step();
        DrawWire(*window_, Wire{sensor, "Value", thermostat, "SpaceTemp"});
        step();

        QUndoStack& stack = window_->UndoStack();
        QCOMPARE(stack.count(), static_cast<int>(texts.size()) - 1);
        for (int i = stack.count(); i > 0; --i) {
            stack.undo();
            QCOMPARE(window_->Project().Text(), texts[i - 1]);
        }
        for (int i = 1; i <= stack.count(); ++i) {
            stack.redo();
            QCOMPARE(window_->Project().Text(), texts[i]);
        }

        QTemporaryDir folder;
        const QString file = folder.filePath("zone.xml");
        QVERIFY(window_->SaveProjectAs(file));
        QVERIFY(window_->isWindowModified() == false);
        const std::string images = window_->Project().ImagesText();
        const QSize canvas = window_->View().size();
        QVERIFY(window_->OpenProject(file));
        QApplication::processEvents();
        QCOMPARE(window_->View().size(), canvas);  // the docks keep their sizes
        QCOMPARE(window_->Project().Text(), texts.back());
        QCOMPARE(window_->Project().ImagesText(), images);
    }

    void theBytesDockShowsTheSelectedBlocksImages() {
        const std::string thermostat = Drop(*window_, "THERMOSTAT", QPoint(200, 200));
        window_->SelectBlock(thermostat);
        const std::shared_ptr<IAppObject> block = window_->Project().Block(thermostat);
        QCOMPARE(window_->Bytes().Image(false).toStdString(), block->IAppObject_Stream());
        QCOMPARE(window_->Bytes().Image(true).toStdString(), block->IAppObject_IntelStream());
        const int position =
            Attribute(*window_, thermostat, "HeatSetpoint")->IAttribute_CDBPosition();
        QVERIFY(window_->Bytes().ToolTipAt(false, position).startsWith("HeatSetpoint"));
        // A value write shows at once.
        window_->Parameters().Edit("HeatSetpoint", "19");
        QTest::qWait(0);
        QCOMPARE(window_->Bytes().Image(false).toStdString(), block->IAppObject_Stream());
        QVERIFY(window_->Bytes().ToolTipAt(false, position).contains("19"));
    }

    // The dock takes what the value editors take: a refused value is named in the log and
    // leaves the block as it was; lists take their labels, structures a field by name.
    void theParametersDockRefusesWhatTheEditorsRefuse() {
        const struct {
            const char* type;
            const char* cell;
            const char* typed;
            const char* attribute;
            const char* stored;   // afterwards
            const char* refusal;  // in the log, or empty
        } rows[] = {
            {"THERMOSTAT", "CoolSetpoint", "abc", "CoolSetpoint", "24", "is not a number"},
            {"THERMOSTAT", "CoolSetpoint", "500", "CoolSetpoint", "24", "outside the limits"},
            {"THERMOSTAT", "CoolSetpoint", "1e9", "CoolSetpoint", "24", "outside the limits"},
            {"THERMOSTAT", "CoolSetpoint", "30", "CoolSetpoint", "30", ""},
            {"THERMOSTAT", "Mode", "HVAC_HEAT", "Mode", "1", ""},
            {"SETPOINT_UNIT", "Units", "CelsiusWide", "Units", "39", ""},
            {"WEEKLY_SCHEDULE", "Holiday.month", "x", "Holiday", "0 12 25", "is not a number"},
            {"WEEKLY_SCHEDULE", "Holiday.month", "11", "Holiday", "0 11 25", ""},
        };
        for (const auto& row : rows) {
            const std::string key = Drop(*window_, row.type, QPoint(200, 200));
            window_->SelectBlock(key);
            window_->Log().Clear();
            window_->Parameters().Edit(row.cell, row.typed);
            QTest::qWait(0);
            QCOMPARE(Value(*window_, key, row.attribute), std::string(row.stored));
            if (*row.refusal != 0) {
                QVERIFY2(LogHas(*window_, row.refusal), row.typed);
            }
        }
        // A list takes a choice of its box, never a text typed into the cell under it.
        auto* table = window_->Parameters().findChild<QTableWidget*>();
        QVERIFY(table != nullptr);
        bool lists = false;
        for (int i = 0; i < table->rowCount(); ++i) {
            if (qobject_cast<QComboBox*>(table->cellWidget(i, 1)) != nullptr) {
                lists = true;
                QVERIFY(!(table->item(i, 1)->flags() & Qt::ItemIsEditable));
            }
        }
        QVERIFY(lists);
    }

    // A double click opens the block's parameter list; what its editors write becomes one
    // undoable step, and undo puts the value back.
    void aDoubleClickOpensTheParameterListWhoseWritesUndo() {
        const std::string thermostat = Drop(*window_, "THERMOSTAT", QPoint(300, 200));
        const BlockItem* item = window_->Scene().Item(thermostat);
        const QPoint body = ViewPoint(*window_, item->mapToScene(QPointF(20, 50)));
        QTest::mouseDClick(window_->View().viewport(), Qt::LeftButton, {}, body);
        QWidget* list = nullptr;
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (widget->objectName() == "frmMain" && widget->isVisible()) {
                list = widget;
            }
        }
        QVERIFY(list != nullptr);
        // The studio's window reached the plug-in as the list's owner.
        QCOMPARE(list->parentWidget(), static_cast<QWidget*>(window_.get()));
        const int steps = window_->UndoStack().count();
        // What an editor does when the user confirms a value.
        Attribute(*window_, thermostat, "HeatSetpoint")->IAttribute_Value("18");
        QTest::qWait(0);
        QCOMPARE(window_->UndoStack().count(), steps + 1);
        window_->UndoStack().undo();
        QCOMPARE(Value(*window_, thermostat, "HeatSetpoint"), std::string("21"));
        // Closing the studio with the list still open tears both down once.
        window_->UndoStack().setClean();
        QVERIFY(window_->close());
        window_.reset();
    }

    // What a block's own parameter list says is logged under the block's name, and a value it
    // writes undoes to the block as it stood: a wire deleted since the list opened stays
    // deleted.
    void theParameterListsWritesConcernItsBlockAsItStands() {
        const std::string sensor = window_->PlaceBlock("IO_CHANNEL", QPointF(0, 0));
        const std::string mux = window_->PlaceBlock("TYPE_MUX", QPointF(300, 0));
        const std::string thermostat = window_->PlaceBlock("THERMOSTAT", QPointF(600, 0));
        const Wire in{sensor, "Value", mux, "In1"};
        const Wire out{mux, "Out", thermostat, "SpaceTemp"};
        QVERIFY(window_->RequestWire(in));
        QVERIFY(window_->RequestWire(out));
        emit window_->Scene().showRequested(mux);
        // What the list's editor does; the thermostat's input refuses the type.
        const std::shared_ptr<IAttribute> type = Attribute(*window_, mux, "DataType");
        type->IAttribute_Value("81");
        QCOMPARE(window_->Log().Messages().back().block,
                 QString::fromStdString(window_->Project().Block(mux)->IAppObject_UserName()));
        window_->Scene().clearSelection();
        WireItemOf(*window_, out)->setSelected(true);
        Trigger(*window_, "actionDelete");
        type->IAttribute_Value("81");
        QTest::qWait(0);
        QCOMPARE(Value(*window_, mux, "DataType"), std::string("81"));
        Trigger(*window_, "actionUndo");
        QCOMPARE(Value(*window_, mux, "DataType"), std::string("105"));
        QCOMPARE(window_->Project().Wires(), std::vector<Wire>{in});
    }

    // A step's progress never runs ahead of the blocks it has done, and ends full: a delete's
    // and its undo's.
    void progressFollowsTheBlocksDone() {
        for (const qreal y : {0, 200, 400}) {
            window_->PlaceBlock("THERMOSTAT", QPointF(0, y));
        }
        int done = 0;
        std::vector<std::pair<int, int>> told;  // percent, and the share of blocks done then
        const QObject scope;
        StudioProject& project = window_->Project();
        for (const auto signal : {&StudioProject::blockAdded, &StudioProject::blockRemoved}) {
            QObject::connect(&project, signal, &scope, [&] { ++done; });
        }
        QObject::connect(&project, &StudioProject::progress, &scope,
                         [&](int percent) { told.emplace_back(percent, 100 * done / 3); });
        Trigger(*window_, "actionSelectAll");
        for (const char* step : {"actionDelete", "actionUndo"}) {
            done = 0;
            told.clear();
            Trigger(*window_, step);
            QVERIFY(!told.empty());
            QCOMPARE(told.back().first, 100);
            for (const auto& [percent, share] : told) {
                QVERIFY2(percent <= share, step);
            }
        }
    }

    // A box shows the message's icon and buttons and gives back the one clicked.
    void aBoxShowsTheMessagesIconAndButtons() {
        QMessageBox::Icon icon = QMessageBox::NoIcon;
        QTimer answer;
        QObject::connect(&answer, &QTimer::timeout, [&] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                icon = box->icon();
                if (QAbstractButton* no = box->button(QMessageBox::No)) {
                    no->click();
                } else {
                    box->reject();
                }
            }
        });
        answer.start(10);
        QCOMPARE(MessageLog::ShowBox(Message{"Replace the file?", "Studio", MessageIcon::Critical,
                                             MessageButtons::YesNo}),
                 kMessageNo);
        QCOMPARE(icon, QMessageBox::Critical);
    }

    // The unit system is a project setting: it shows in the values, is saved, and undoes.
    void usUnitsAreAProjectSettingThatUndoes() {
        const std::string thermostat = Drop(*window_, "THERMOSTAT", QPoint(300, 200));
        const auto setpoint = Attribute(*window_, thermostat, "HeatSetpoint");
        auto shown = [&] { return setpoint->IAttribute_DispValue(); };
        const std::string si = shown();
        window_->findChild<QAction*>("actionUsUnits")->trigger();
        QVERIFY(shown() != si);
        QVERIFY(window_->Project().Text().find("UnitSystem=\"US\"") != std::string::npos);
        window_->UndoStack().undo();
        QCOMPARE(shown(), si);
    }

    void aNameIsSavedAsWrittenOrRefusedWithTheFileKept_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("saved");
        QTest::newRow("carriage return") << QString("Zone\r1") << true;
        QTest::newRow("escape") << QString("Zone\x1B") << false;
    }

    // A name XML cannot carry fails the save and leaves the file; one it can survives the
    // way back, a carriage return included.
    void aNameIsSavedAsWrittenOrRefusedWithTheFileKept() {
        QFETCH(QString, name);
        QFETCH(bool, saved);
        QTemporaryDir folder;
        const QString file = folder.filePath("zone.xml");
        const std::string key = Drop(*window_, "THERMOSTAT", QPoint(300, 200));
        QVERIFY(window_->SaveProjectAs(file));
        const std::string before = FileText(file);
        emit window_->Scene().renameRequested(key, name.toStdString());
        window_->SetSaveNameQuestion([] { return QString(); });
        Trigger(*window_, "actionSave");
        QCOMPARE(window_->isWindowModified(), !saved);
        if (!saved) {
            QCOMPARE(FileText(file), before);
            QVERIFY(LogHas(*window_, "The project was not saved"));
            QVERIFY(LogHas(*window_, "U+001B"));
            return;
        }
        QVERIFY(window_->OpenProject(file));
        QCOMPARE(window_->Project().Block(key)->IAppObject_UserName(), name.toStdString());
    }

    // The file system takes no more than the last save: the save fails, the file on disk is
    // the last saved project, byte for byte, the user hears why and is offered Save As, which
    // adds the extension.
    void aFailedWriteLeavesTheFileAndOffersSaveAs() {
        QTemporaryDir folder;
        const QString file = folder.filePath("plant.xml");
        Drop(*window_, "THERMOSTAT", QPoint(300, 200));
        QVERIFY(window_->SaveProjectAs(file));
        const std::string before = FileText(file);
        const std::string added = Drop(*window_, "TYPE_MUX", QPoint(600, 200));
        {
            // Files may grow to the size of the last save, which the new project's text passes.
            FileSizeLimit limit(before.size());
            window_->SetSaveNameQuestion([&] {
                limit.Lift();
                return folder.filePath("rescued");
            });
            Trigger(*window_, "actionSave");
        }
        QVERIFY(LogHas(*window_, "file too large"));
        QVERIFY(LogHas(*window_, "Save the project under another name"));
        QCOMPARE(window_->FileName(), folder.filePath("rescued.xml"));
        QVERIFY(FileText(folder.filePath("rescued.xml")).find("Key=\"" + added + "\"") !=
                std::string::npos);
        QCOMPARE(FileText(file), before);
    }

    // Ctrl+S while a long delete runs saves the project once the delete is whole, and the
    // title's marker says it is saved; the delete's undo is whole as well.
    void saveDuringALongDeleteWaitsForTheWholeStep() {
        std::string text = "<Project>";
        for (int i = 1; i <= 300; ++i) {
            const std::string sensor = "S" + std::to_string(i);
            text += "<IO_CHANNEL Key=\"" + sensor + "\"/><TYPE_MUX Key=\"M" + std::to_string(i) +
                    "\"><Connection Input=\"In1\" Source=\"" + sensor +
                    "\" Output=\"Value\"/></TYPE_MUX>";
        }
        const QString file = WriteProject("large.xml", text + "</Project>");
        QVERIFY(window_->OpenProject(file));
        QCOMPARE(window_->Project().Wires().size(), std::size_t{300});
        const std::string opened = window_->Project().Text();
        Trigger(*window_, "actionSelectAll");
        // Asked in the middle of the step, as an event the step's pump serves would ask.
        bool savedWhileBusy = false;
        const QMetaObject::Connection midway =
            QObject::connect(&window_->Project(), &StudioProject::progress, [&](int percent) {
                if (percent >= 50 && !savedWhileBusy) {
                    savedWhileBusy = window_->Busy();
                    Trigger(*window_, "actionSave");
                }
            });
        Trigger(*window_, "actionDelete");
        QObject::disconnect(midway);
        QVERIFY(savedWhileBusy);
        QVERIFY(!window_->isWindowModified());
        QCOMPARE(FileText(file), window_->Project().Text());
        QVERIFY(window_->Project().BlockKeys().empty());
        // Undo brings the blocks and their wires back into the project, not only onto the
        // canvas: the next save writes them, and until then the title says it is unsaved.
        Trigger(*window_, "actionUndo");
        QCOMPARE(window_->Project().Text(), opened);
        QVERIFY(window_->isWindowModified());
        Trigger(*window_, "actionSave");
        QCOMPARE(FileText(file), opened);
        QVERIFY(!window_->isWindowModified());
        // Save As in the middle answers that nothing is written yet, and writes once the step
        // is whole.
        const QString copy = folder_->filePath("copy.xml");
        int answer = -1;
        const QMetaObject::Connection asked =
            QObject::connect(&window_->Project(), &StudioProject::progress, [&](int percent) {
                if (percent >= 50 && answer < 0) {
                    answer = window_->SaveProjectAs(copy) ? 1 : 0;
                }
            });
        Trigger(*window_, "actionSelectAll");
        Trigger(*window_, "actionDelete");
        QObject::disconnect(asked);
        QCOMPARE(answer, 0);
        QCOMPARE(window_->FileName(), copy);
        QCOMPARE(FileText(copy), window_->Project().Text());
    }

    // A block whose type is missing keeps its key, export index and name: a placed block
    // takes none of them, and after save and reopen the wire from the missing block still
    // leads from it.
    void aPlacedBlockBesideAMissingTypeBlockHasItsOwnIdentity() {
        const QString file = WriteProject(
            "old.xml",
            "<Project><GONE_TYPE Key=\"Block1\" ExportIndex=\"0\"><UserName>Thermostat "
            "1</UserName><X_Position>40</X_Position></GONE_TYPE><TYPE_MUX Key=\"Mux\" "
            "ExportIndex=\"1\"><Connection "
            "Input=\"In1\" Source=\"Block1\" Output=\"Value\"/></TYPE_MUX></Project>");
        QVERIFY(window_->OpenProject(file));
        const std::string placed = Drop(*window_, "THERMOSTAT", QPoint(300, 200));
        const std::shared_ptr<IAppObject> block = window_->Project().Block(placed);
        QVERIFY(placed != "Block1");
        QVERIFY(block->IAppObject_ExportIndex() > 1);
        QVERIFY(block->IAppObject_UserName() != "Thermostat 1");
        QVERIFY(window_->SaveProjectAs(file));
        QVERIFY(window_->OpenProject(file));
        QCOMPARE(window_->Project().MissingBlocks(), 1);
        QVERIFY(window_->Project().Wires().empty());
        QVERIFY(FileText(file).find("Source=\"Block1\"") != std::string::npos);
        // Drawn as a stand-in at its place, with the output its wire names, and the wire.
        QVERIFY(TerminalCentre(*window_, "Block1", "Value", true).x() > 40 + 100);
        const auto drawn = [&] {
            int wires = 0;
            for (QGraphicsItem* item : window_->Scene().items()) {
                const auto* wire = qgraphicsitem_cast<WireItem*>(item);
                wires += wire && wire->isVisible() && wire->Connection().source == "Block1";
            }
            return wires;
        };
        QCOMPARE(drawn(), 1);
        // Deleting the wired block takes the wire from the file; undo brings both back.
        window_->Scene().SelectAll();
        Trigger(*window_, "actionDelete");
        QCOMPARE(drawn(), 0);
        QVERIFY(window_->Project().Text().find("Source=\"Block1\"") == std::string::npos);
        Trigger(*window_, "actionUndo");
        QCOMPARE(drawn(), 1);
        QVERIFY(window_->Project().Text().find("Source=\"Block1\"") != std::string::npos);
    }

    // A step that fails halfway is taken back whole: a delete that cannot save the third of
    // four blocks (a name XML cannot carry) leaves every block, wire and reference, and no
    // step to undo.
    void aStepThatFailsHalfwayLeavesTheProjectAsItWas() {
        const QString file = WriteProject(
            "pairs.xml",
            "<Project><IO_CHANNEL Key=\"S1\"/><TYPE_MUX Key=\"M1\"><Connection Input=\"In1\" "
            "Source=\"S1\" Output=\"Value\"/></TYPE_MUX><IO_CHANNEL Key=\"S2\"/><TYPE_MUX "
            "Key=\"M2\"><Connection Input=\"In1\" Source=\"S2\" Output=\"Value\"/></TYPE_MUX>"
            "</Project>");
        QVERIFY(window_->OpenProject(file));
        emit window_->Scene().renameRequested("S2", "Sensor\x1B");
        auto* undo = window_->findChild<QUndoStack*>();
        const int steps = undo->count();
        const std::string reference = InputValue(*window_, "M1", "In1");
        Trigger(*window_, "actionSelectAll");
        Trigger(*window_, "actionDelete");
        QVERIFY(LogHas(*window_, "Could not delete"));
        QCOMPARE(window_->Project().BlockKeys().size(), std::size_t{4});
        QCOMPARE(window_->Project().Wires().size(), std::size_t{2});
        QCOMPARE(InputValue(*window_, "M1", "In1"), reference);
        QCOMPARE(undo->count(), steps);
        QVERIFY(!window_->Busy());
    }

    // Copied blocks come back with the wires among them (not those to blocks left behind),
    // under keys and names of their own, a step from the copied ones; undo takes the paste
    // away and redo brings back the same blocks. Another project takes the clipboard as well.
    void copiesKeepTheWiresAmongTheBlocks() {
        const QString file = WriteProject(
            "pair.xml",
            "<Project><IO_CHANNEL Key=\"S1\"><UserName>Sensor</UserName></IO_CHANNEL>"
            "<TYPE_MUX Key=\"M1\"><UserName>Mux</UserName><Connection Input=\"In1\" "
            "Source=\"S1\" Output=\"Value\"/></TYPE_MUX><TYPE_MUX Key=\"M2\"><Connection "
            "Input=\"In1\" Source=\"S1\" Output=\"Value\"/></TYPE_MUX></Project>");
        QVERIFY(window_->OpenProject(file));
        const std::string opened = window_->Project().Text();
        window_->SelectBlocks({"S1", "M1"});
        Trigger(*window_, "actionCopy");
        Trigger(*window_, "actionPaste");
        const std::vector<std::string> keys = window_->Project().BlockKeys();
        QCOMPARE(keys.size(), std::size_t{5});
        const std::string sensor = keys[3];
        const std::string mux = keys[4];
        QCOMPARE(window_->Scene().SelectedBlocks(), (std::vector<std::string>{sensor, mux}));
        QCOMPARE(window_->Project().WiresOf(sensor),
                 (std::vector<Wire>{{sensor, "Value", mux, "In1"}}));
        QCOMPARE(window_->Project().Block(sensor)->IAppObject_UserName(), std::string("Sensor.2"));
        QCOMPARE(window_->Project().Block(mux)->IAppObject_XPosition(),
                 window_->Project().Block("M1")->IAppObject_XPosition() + 30);
        const std::string pasted = window_->Project().Text();
        Trigger(*window_, "actionUndo");
        QCOMPARE(window_->Project().Text(), opened);
        Trigger(*window_, "actionRedo");
        QCOMPARE(window_->Project().Text(), pasted);
        // Duplicate leaves the clipboard; a new project pastes what it holds.
        window_->SelectBlocks({sensor, mux});
        Trigger(*window_, "actionDuplicate");
        QCOMPARE(window_->Project().BlockKeys().size(), std::size_t{7});
        window_->NewProject();
        Trigger(*window_, "actionPaste");
        QCOMPARE(window_->Project().BlockKeys().size(), std::size_t{2});
        QCOMPARE(window_->Project().Wires().size(), std::size_t{1});
        QApplication::clipboard()->setText("<Project><unclosed></Project>");
        Trigger(*window_, "actionPaste");
        QVERIFY(LogHas(*window_, "Cannot paste: cannot read the clipboard"));
        QCOMPARE(window_->Project().BlockKeys().size(), std::size_t{2});
    }

    // Values go to several blocks in one step each way: a value set with several selected,
    // parameters pasted by name (a block without the parameter is listed, not written), and
    // a reset to the type's values. Each is undone whole.
    void valuesGoToEverySelectedBlockThatTakesThem() {
        const std::string a = Drop(*window_, "THERMOSTAT", QPoint(100, 100));
        const std::string b = Drop(*window_, "THERMOSTAT", QPoint(100, 300));
        const std::string pid = Drop(*window_, "PID_LOOP", QPoint(400, 100));
        const std::string start = Value(*window_, a, "HeatSetpoint");
        window_->SelectBlocks({a, b});
        window_->SetValue(a, "HeatSetpoint", "23");
        QCOMPARE(Value(*window_, b, "HeatSetpoint"), std::string("23"));
        Trigger(*window_, "actionUndo");
        QCOMPARE(Value(*window_, a, "HeatSetpoint"), start);
        QCOMPARE(Value(*window_, b, "HeatSetpoint"), start);

        window_->SelectBlocks({a});
        window_->SetValue(a, "HeatSetpoint", "25");
        Trigger(*window_, "actionCopy");
        window_->SelectBlocks({b, pid});
        Trigger(*window_, "actionPasteParameters");
        QCOMPARE(Value(*window_, b, "HeatSetpoint"), std::string("25"));
        QVERIFY(LogHas(*window_, "HeatSetpoint: the block has no such parameter"));
        Trigger(*window_, "actionUndo");
        QCOMPARE(Value(*window_, b, "HeatSetpoint"), start);

        window_->SelectBlocks({a});
        Trigger(*window_, "actionReset");
        QCOMPARE(Value(*window_, a, "HeatSetpoint"), start);
        QVERIFY(window_->Project().Block(a)->IAppObject_UserName() != "");
        Trigger(*window_, "actionUndo");
        QCOMPARE(Value(*window_, a, "HeatSetpoint"), std::string("25"));

        // A unit goes in before the values that depend on it, which its change would reset.
        const std::string unitsFrom = Drop(*window_, "SETPOINT_UNIT", QPoint(400, 300));
        const std::string unitsTo = Drop(*window_, "SETPOINT_UNIT", QPoint(400, 500));
        window_->SelectBlocks({unitsFrom});
        window_->SetValue(unitsFrom, "Units", "39");
        window_->SetValue(unitsFrom, "Setpoint", "22.5");
        Trigger(*window_, "actionCopy");
        window_->SelectBlocks({unitsTo});
        Trigger(*window_, "actionPasteParameters");
        QCOMPARE(Value(*window_, unitsTo, "Units"), std::string("39"));
        QCOMPARE(Value(*window_, unitsTo, "Setpoint"), std::string("22.5"));
    }

    // A long name leaves the canvas its width: the docks keep theirs and cut the name short.
    void aLongNameLeavesTheCanvasItsWidth() {
        const std::string key = Drop(*window_, "THERMOSTAT", QPoint(300, 200));
        QTest::qWait(20);
        const int width = window_->View().width();
        emit window_->Scene().renameRequested(key, std::string(112, 'W'));
        window_->SelectBlock(key);
        QTest::qWait(20);
        QCOMPARE(window_->View().width(), width);
    }

    // A wire with a block in its straight way runs around it at right angles beneath the
    // blocks, and crosses none; the block moved away, the wire runs straight again.
    void aRoutedWireCrossesNoBlock() {
        const std::string sensor = window_->PlaceBlock("IO_CHANNEL", QPointF(0, 0));
        const std::string mux = window_->PlaceBlock("TYPE_MUX", QPointF(600, 0));
        const std::string between = window_->PlaceBlock("THERMOSTAT", QPointF(280, 0));
        const Wire wire{sensor, "Value", mux, "In1"};
        QVERIFY(window_->RequestWire(wire));
        const WireItem* item = WireItemOf(*window_, wire);
        QVERIFY(item != nullptr);
        const auto bodyOf = [&](const std::string& key) {
            const BlockItem* block = window_->Scene().Item(key);
            return block->mapRectToScene(block->Body());
        };
        const std::vector<QPointF>& route = item->Points();
        QVERIFY(item->isVisible());
        // Beneath the blocks, so that a wire never hides a terminal or a name.
        QVERIFY(item->zValue() < window_->Scene().Item(between)->zValue());
        QCOMPARE(route.front(), TerminalCentre(*window_, sensor, "Value", true));
        QCOMPARE(route.back(), TerminalCentre(*window_, mux, "In1", false));
        for (const std::string& key : {sensor, mux, between}) {
            QVERIFY(!WireRouter::Crosses(route, bodyOf(key)));
        }
        for (std::size_t i = 1; i < route.size(); ++i) {
            QVERIFY(route[i].x() == route[i - 1].x() || route[i].y() == route[i - 1].y());
        }
        QVERIFY(route.size() > 4);
        window_->Project().MoveBlock(between, QPointF(280, 400));
        QCOMPARE(item->Points().size(), std::size_t{4});
        // Opened again, the wire runs between the same terminals.
        const QString file = folder_->filePath("routed.xml");
        QVERIFY(window_->SaveProjectAs(file));
        QVERIFY(window_->OpenProject(file));
        const WireItem* opened = WireItemOf(*window_, wire);
        QVERIFY(opened != nullptr);
        QCOMPARE(opened->Points().front(), TerminalCentre(*window_, sensor, "Value", true));
        QCOMPARE(opened->Points().back(), TerminalCentre(*window_, mux, "In1", false));
    }

    // Find goes from match to match by name, type or key; blocks line up in one undoable
    // step; the drawing exports as each format with its header, and a format the studio
    // cannot write leaves no file.
    // The palette lists the library's types by category; a search matches a type's name, its
    // category, its type name and its description; a double click places the type.
    void thePaletteFindsAndPlacesTypes() {
        Palette& palette = window_->BlockPalette();
        QCOMPARE(palette.Filter(QString()), 14);
        QCOMPARE(palette.Filter("hvac"), 5);
        QCOMPARE(palette.Filter("ROOM_CONTROLLER"), 1);  // the type name is in the tip only
        QCOMPARE(palette.Filter("hysteresis"), 1);       // the description too
        QTreeWidgetItem* label = palette.Entry("LABEL");
        QVERIFY(label != nullptr);
        QVERIFY(palette.Entry("HVAC") == nullptr);
        emit palette.itemDoubleClicked(label->parent(), 0);  // a category places nothing
        QCOMPARE(window_->Project().BlockKeys().size(), std::size_t{0});
        emit palette.itemDoubleClicked(label, 0);
        QCOMPARE(window_->Project().BlockKeys().size(), std::size_t{1});
        QCOMPARE(window_->Project().Block(window_->Project().BlockKeys()[0])->IAppObject_ID(),
                 std::string("311"));  // LABEL's
        // Another library's types take the place of the first one's.
        const QString shipped =
            QString::fromStdString(BlockFactory::ShippedDataFolder() / "library");
        const QString other = folder_->filePath("library");
        QVERIFY(QDir().mkpath(other + "/LABEL"));
        for (const char* file : {"/library.xml", "/LABEL/LABEL.xml"}) {
            QVERIFY(QFile::copy(shipped + file, other + file));
        }
        window_->NewProject();
        QVERIFY(window_->OpenLibrary(other));
        QCOMPARE(palette.Filter(QString()), 1);
        QVERIFY(palette.Entry("LABEL") != nullptr);
    }

    // The middle button drags the drawing under the hand.
    void theMiddleButtonPansTheCanvas() {
        Drop(*window_, "THERMOSTAT", QPoint(300, 200));
        CanvasView& view = window_->View();
        view.scale(8, 8);
        QApplication::processEvents();
        QScrollBar* across = view.horizontalScrollBar();
        QScrollBar* down = view.verticalScrollBar();
        across->setValue((across->minimum() + across->maximum()) / 2);
        down->setValue((down->minimum() + down->maximum()) / 2);
        const int x = across->value();
        const int y = down->value();
        QWidget* viewport = view.viewport();
        const QPoint from(200, 200);
        QTest::mousePress(viewport, Qt::MiddleButton, {}, from);
        QTest::mouseMove(viewport, from + QPoint(-40, -30));
        QTest::mouseRelease(viewport, Qt::MiddleButton, {}, from + QPoint(-40, -30));
        QCOMPARE(across->value(), x + 40);
        QCOMPARE(down->value(), y + 30);
        QCOMPARE(window_->Project().BlockKeys().size(), std::size_t{1});
    }

    // The overview shows the drawing and frames what the canvas shows.
    void theOverviewShowsTheDrawing() {
        Drop(*window_, "THERMOSTAT", QPoint(300, 200));
        window_->Overview().Redraw();
        auto* map = window_->Overview().findChild<QWidget*>("overviewMap");
        QVERIFY(map != nullptr);
        const QImage shot = map->grab().toImage();
        const QRgb background = QColor(0xee, 0xf1, 0xf4).rgb();
        int drawn = 0;
        for (int y = 0; y < shot.height(); ++y) {
            for (int x = 0; x < shot.width(); ++x) {
                drawn += shot.pixel(x, y) != background ? 1 : 0;
            }
        }
        QVERIFY(drawn > shot.width() * shot.height() / 50);
    }

    // A move is one step, and a block let go past the view's edge is in the drawing's area;
    // a click that moves nothing afterwards adds no step, nor does a double click whose first
    // click nudged the block (the nudge is the step).
    void aClickAfterADragAddsNoStep() {
        const std::string key = Drop(*window_, "THERMOSTAT", QPoint(300, 200));
        const BlockItem* item = window_->Scene().Item(key);
        const QPointF grip = item->mapToScene(QPointF(item->boundingRect().width() / 2, 30));
        QWidget* viewport = window_->View().viewport();
        const QPoint edge(viewport->width() - 10, ViewPoint(*window_, grip).y() + 100);
        DragMouse(*window_, grip, window_->View().mapToScene(edge));
        QVERIFY(!window_->View()
                     .mapToScene(viewport->rect())
                     .boundingRect()
                     .contains(item->sceneBoundingRect()));
        QVERIFY(window_->Scene().sceneRect().contains(item->sceneBoundingRect()));
        const int steps = window_->UndoStack().count();
        const QPoint empty = ViewPoint(*window_, grip + QPointF(0, 400));
        QTest::mouseClick(viewport, Qt::LeftButton, {}, empty);
        QCOMPARE(window_->UndoStack().count(), steps);
        QCOMPARE(window_->UndoStack().undoText().startsWith(QStringLiteral("Move")), true);

        const QPoint name = ViewPoint(*window_, item->mapToScene(item->NameRect().center()));
        const QPoint nudged = name + QPoint(0, 6);
        QTest::mousePress(viewport, Qt::LeftButton, {}, name);
        QTest::mouseMove(viewport, nudged);
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, nudged);
        QTest::mouseDClick(viewport, Qt::LeftButton, {}, nudged);
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, nudged);
        QCOMPARE(window_->UndoStack().count(), steps + 1);
    }

    // A block deleted while its name is being edited takes the editor with it.
    void aBlockDeletedWhileRenamedTakesItsEditor() {
        const std::string key = Drop(*window_, "THERMOSTAT", QPoint(300, 200));
        window_->SelectBlock(key);
        Trigger(*window_, "actionRename");
        const auto editors = [&] {
            int count = 0;
            for (QGraphicsItem* shown : window_->Scene().items()) {
                count += dynamic_cast<QGraphicsProxyWidget*>(shown) != nullptr ? 1 : 0;
            }
            return count;
        };
        QCOMPARE(editors(), 1);
        window_->DeleteSelection();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(window_->Project().BlockKeys().size(), std::size_t{0});
        QCOMPARE(editors(), 0);
    }

    void findArrangeAndExportTheDrawing() {
        const std::string a = Drop(*window_, "THERMOSTAT", QPoint(100, 100));
        const std::string b = Drop(*window_, "PID_LOOP", QPoint(400, 300));
        emit window_->Scene().renameRequested(b, "Boiler loop");
        QVERIFY(window_->FindBlock("boiler"));
        QCOMPARE(window_->Scene().SelectedBlocks(), std::vector<std::string>{b});
        QVERIFY(window_->FindBlock("thermostat"));
        QCOMPARE(window_->Scene().SelectedBlocks(), std::vector<std::string>{a});
        QVERIFY(!window_->FindBlock("nothing like it"));
        QCOMPARE(window_->BlockPalette().Filter("nothing like it"), 0);
        QVERIFY(window_->BlockPalette().Filter("pid") > 0);

        window_->SelectBlocks({a, b});
        window_->Arrange(StudioWindow::Arrangement::AlignLeft);
        const auto x = [&](const std::string& key) {
            return window_->Project().Block(key)->IAppObject_XPosition();
        };
        QCOMPARE(x(a), x(b));
        Trigger(*window_, "actionUndo");
        QVERIFY(x(a) != x(b));

        QTemporaryDir folder;
        std::vector<std::pair<QString, std::string>> formats{{"pdf", "%PDF"}, {"png", "\x89PNG"}};
#ifdef ZERBIN_STUDIO_WITH_SVG
        formats.emplace_back("svg", "<?xml");
#endif
        for (const auto& [suffix, header] : formats) {
            const QString file = folder.filePath("drawing." + suffix);
            QVERIFY(window_->ExportDrawing(file));
            QVERIFY(FileText(file).rfind(header, 0) == 0);
        }
        QVERIFY(!window_->ExportDrawing(folder.filePath("drawing.bmp")));
        QVERIFY(!QFile::exists(folder.filePath("drawing.bmp")));
        // An export that cannot be written says why, naming the file.
        QVERIFY(!window_->ExportImages(folder.filePath("missing/images.txt")));
        QVERIFY(LogHas(*window_, "missing/images.txt"));
    }

    // Unsaved work goes to a recovery file beside the project; a studio that opens the project
    // after a crash offers the work back, and the save that keeps it removes the file.
    void unsavedWorkComesBackAfterACrash() {
        QTemporaryDir folder;
        const QString file = folder.filePath("plant.xml");
        Drop(*window_, "THERMOSTAT", QPoint(300, 200));
        QVERIFY(window_->SaveProjectAs(file));
        QVERIFY(window_->Recovery().SaveNow());
        QVERIFY(!QFile::exists(file + ".recovery"));
        const std::string added = Drop(*window_, "PID_LOOP", QPoint(500, 200));
        QVERIFY(window_->Recovery().SaveNow());
        QVERIFY(QFile::exists(file + ".recovery"));
        // The window goes as a crash takes it: no close, no save.
        init();
        QVERIFY(window_->OpenProject(file));
        QVERIFY(window_->Project().Block(added));
        QVERIFY(window_->isWindowModified());
        Trigger(*window_, "actionSave");
        QVERIFY(!QFile::exists(file + ".recovery"));
        QVERIFY(FileText(file).find("Key=\"" + added + "\"") != std::string::npos);
    }

    // A block saved under another version of its type is marked; Update to the library's
    // type keeps what the type takes, names what it drops, and is undone whole.
    void aChangedTypeIsMarkedAndUpdatedInOneStep() {
        const QString file =
            WriteProject("old.xml",
                         "<Project><THERMOSTAT Key=\"T\" TypeStamp=\"00000000@0.9\"><UserName>Zone"
                         "</UserName><Attributes><HeatSetpoint>22</HeatSetpoint><Gone>5</Gone>"
                         "</Attributes></THERMOSTAT></Project>");
        QVERIFY(window_->OpenProject(file));
        const BlockItem* item = window_->Scene().Item("T");
        QVERIFY(item->TypeChanged());
        const std::string opened = window_->Project().Text();
        Trigger(*window_, "actionUpdateType");
        QVERIFY(!window_->Scene().Item("T")->TypeChanged());
        QVERIFY(LogHas(*window_, "Gone"));
        QCOMPARE(Value(*window_, "T", "HeatSetpoint"), std::string("22"));
        Trigger(*window_, "actionUndo");
        QVERIFY(window_->Scene().Item("T")->TypeChanged());
        QCOMPARE(window_->Project().Text(), opened);
    }

    // A block whose type the library lacks is kept as it stands, said once, and written back.
    void aProjectWithAMissingTypeKeepsThatBlock() {
        const QString file =
            WriteProject("old.xml",
                         "<Project><GONE_TYPE Key=\"Block1\"><UserName>Old</UserName></GONE_TYPE>"
                         "<LABEL Key=\"Block2\"><UserName>Note</UserName></LABEL></Project>");
        int boxes = 0;
        window_->Log().SetPresenter([&](const Message&) {
            ++boxes;
            return kMessageOk;
        });
        QVERIFY(window_->OpenProject(file));
        QCOMPARE(boxes, 0);  // while a project loads, messages go to the log alone at first
        QCOMPARE(window_->Project().BlockKeys().size(), std::size_t{1});
        QCOMPARE(window_->Project().MissingBlocks(), 1);
        QVERIFY(LogHas(*window_, "no block type 'GONE_TYPE'"));
        QVERIFY(window_->Project().Text().find("<UserName>Old</UserName>") != std::string::npos);
        // A file the command refuses is refused, and the project open stays.
        for (const char* refused : {"<Project><unclosed></Project>",
                                    "<!DOCTYPE Project [<!ENTITY e \"x\">]><Project>&e;</Project>",
                                    "<Project/><Project/>"}) {
            WriteProject("old.xml", refused);
            QVERIFY(!window_->OpenProject(file));
            QCOMPARE(window_->Project().MissingBlocks(), 1);
        }
        QVERIFY(LogHas(*window_, "Cannot open the project"));
    }

private:
    // A project file of the text in a folder of the test's own.
    QString WriteProject(const QString& name, const std::string& text) {
        const QString file = folder_->filePath(name);
        std::ofstream(file.toStdString()) << text;
        return file;
    }

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<StudioWindow> window_;
};

QTEST_MAIN(StudioTest)
#include "StudioTest.moc"
