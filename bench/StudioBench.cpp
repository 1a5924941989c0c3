// The studio with a large project, offscreen, through the actions a user takes: open a project
// with wires (File → Open after its dialog), select all, delete, undo, save; and one frame of
// panning and of zooming once open. Each figure gives the process's peak resident memory so
// far, so a figure of memory is only the open's own when its benchmark runs alone
// (--benchmark_filter). The blocks stand on a grid or all at one position: memory must not
// depend on where they stand.
// Run: build with -DZERBIN_BENCH=ON, then build/studio/StudioBench.
#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QScrollBar>
#include <QUndoStack>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>

#include "studio/BlockFactory.h"
#include "studio/BlockItem.h"
#include "studio/CanvasScene.h"
#include "studio/OverviewDock.h"
#include "studio/StudioProject.h"
#include "studio/StudioWindow.h"
#include "studio/WireRouter.h"

namespace {

using zerbin::studio::BlockFactory;
using zerbin::studio::StudioProject;
using zerbin::studio::StudioWindow;

enum class Layout { Grid, OnePosition };

std::map<std::pair<int, Layout>, std::string>& GeneratedFiles() {
    static std::map<std::pair<int, Layout>, std::string> files;
    return files;
}

// Pairs of an input channel wired into a thermostat, written as the studio writes a project,
// once per size and layout for all runs.
const std::string& LargeProject(int blocks, Layout layout = Layout::Grid) {
    std::string& path = GeneratedFiles()[{blocks, layout}];
    if (!path.empty()) {
        return path;
    }
    path = QDir::temp()
               .filePath(QString("zerbin-studio-bench-%1-%2.xml")
                             .arg(blocks)
                             .arg(layout == Layout::Grid ? "grid" : "one"))
               .toStdString();
    std::ofstream out(path);
    out << "<Project UnitSystem=\"SI\" ShortFloat=\"0\">\n";
    for (int i = 0; i < blocks / 2; ++i) {
        const bool grid = layout == Layout::Grid;
        const double x = grid ? (i % 50) * 500.0 : 0;
        const double y = grid ? (i / 50) * 160.0 : 0;
        const std::string sensor = "Block" + std::to_string(2 * i + 1);
        const std::string thermostat = "Block" + std::to_string(2 * i + 2);
        out << "<IO_CHANNEL Key=\"" << sensor << "\"><UserName>Sensor " << i
            << "</UserName><X_Position>" << x << "</X_Position><Y_Position>" << y
            << "</Y_Position></IO_CHANNEL>\n"
            << "<THERMOSTAT Key=\"" << thermostat << "\"><UserName>Thermostat " << i
            << "</UserName><X_Position>" << (grid ? x + 220 : 0) << "</X_Position><Y_Position>" << y
            << "</Y_Position><Connection Input=\"SpaceTemp\" Source=\"" << sensor
            << "\" Output=\"Value\"/></THERMOSTAT>\n";
    }
    out << "</Project>\n";
    return path;
}

void Trigger(StudioWindow& window, const char* action) {
    window.findChild<QAction*>(action)->trigger();
}

// Peak resident memory of the process so far, in MiB (2^20 bytes).
double PeakMiB() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

void Report(benchmark::State& state, StudioWindow& window) {
    state.counters["blocks"] = static_cast<double>(window.Project().BlockKeys().size());
    state.counters["wires"] = static_cast<double>(window.Project().Wires().size());
    state.counters["peak_MiB"] = PeakMiB();
}

// A window of a usual size on the screen, its messages kept out of boxes.
void ShowQuietly(StudioWindow& window) {
    window.Log().SetPresenter(nullptr);
    window.resize(1280, 800);
    window.show();
}

void Open(StudioWindow& window, const std::string& file, benchmark::State& state) {
    if (!window.OpenProject(QString::fromStdString(file))) {
        state.SkipWithError("the project did not open");
    }
    window.View().viewport()->repaint();
}

// The project model alone, with no window: the engine's load and the studio's wires.
void ModelOpen(benchmark::State& state) {
    const std::string& file = LargeProject(static_cast<int>(state.range(0)));
    const std::filesystem::path data = BlockFactory::ShippedDataFolder();
    BlockFactory factory;
    factory.UseLibrary(data / "library");
    auto dictionary = std::make_shared<pugi::xml_document>();
    dictionary->load_file((data / "snvts.xml").c_str());
    StudioProject project(factory, dictionary, nullptr);
    for (auto _ : state) {
        std::string error;
        const auto document = StudioProject::ReadFile(file, &error);
        if (!document) {
            state.SkipWithError(error.c_str());
            break;
        }
        project.Load(*document);
        benchmark::DoNotOptimize(project.BlockKeys().size());
        state.PauseTiming();
        project.Clear();
        state.ResumeTiming();
    }
    state.counters["peak_MiB"] = PeakMiB();
}
BENCHMARK(ModelOpen)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(3);

// The window's open: model, canvas and first paint.
void WindowOpen(benchmark::State& state, Layout layout) {
    const std::string& file = LargeProject(static_cast<int>(state.range(0)), layout);
    StudioWindow window;
    ShowQuietly(window);
    for (auto _ : state) {
        state.PauseTiming();
        window.NewProject();
        state.ResumeTiming();
        Open(window, file, state);
    }
    Report(state, window);
}
BENCHMARK_CAPTURE(WindowOpen, Grid, Layout::Grid)
    ->Arg(10000)
    ->Arg(20000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK_CAPTURE(WindowOpen, OnePosition, Layout::OnePosition)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

// Edit → Select all, Delete and Undo over every block of an open project, each timed alone;
// what comes before it in a round is done untimed.
enum class Action { SelectAll, Delete, Undo, Redo };

void EditAll(benchmark::State& state, Action timed) {
    StudioWindow window;
    ShowQuietly(window);
    Open(window, LargeProject(static_cast<int>(state.range(0))), state);
    const std::size_t blocks = window.Project().BlockKeys().size();
    for (auto _ : state) {
        state.PauseTiming();
        window.Scene().clearSelection();
        for (const auto& [action, name] :
             {std::pair{Action::SelectAll, "actionSelectAll"},
              std::pair{Action::Delete, "actionDelete"}, std::pair{Action::Undo, "actionUndo"},
              std::pair{Action::Redo, "actionRedo"}}) {
            if (action == timed) {
                state.ResumeTiming();
            }
            Trigger(window, name);
            window.View().viewport()->repaint();
            if (action == timed) {
                state.PauseTiming();
                break;
            }
        }
        // Back to the project as opened for the next round.
        while (window.UndoStack().canUndo()) {
            window.UndoStack().undo();
        }
        window.UndoStack().clear();
        if (window.Project().BlockKeys().size() != blocks) {
            state.SkipWithError("undo did not bring every block back");
        }
        state.ResumeTiming();
    }
    Report(state, window);
}
BENCHMARK_CAPTURE(EditAll, SelectAll, Action::SelectAll)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);
BENCHMARK_CAPTURE(EditAll, Delete, Action::Delete)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);
BENCHMARK_CAPTURE(EditAll, Undo, Action::Undo)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);
BENCHMARK_CAPTURE(EditAll, Redo, Action::Redo)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);

// File → Save as, through the project file service.
void Save(benchmark::State& state) {
    StudioWindow window;
    ShowQuietly(window);
    Open(window, LargeProject(static_cast<int>(state.range(0))), state);
    const QString file = QDir::temp().filePath("zerbin-studio-bench-saved.xml");
    for (auto _ : state) {
        if (!window.SaveProjectAs(file)) {
            state.SkipWithError("the project was not saved");
        }
    }
    Report(state, window);
    QFile::remove(file);
    QFile::remove(file + "~");
}
BENCHMARK(Save)->Arg(10000)->Unit(benchmark::kMillisecond)->Iterations(3);

// One frame: move the view and paint it at once, as a drag with the middle button does.
void PanFrame(benchmark::State& state) {
    StudioWindow window;
    ShowQuietly(window);
    Open(window, LargeProject(10000), state);
    window.View().SetZoom(1.0);
    QScrollBar* bar = window.View().horizontalScrollBar();
    int step = 40;
    for (auto _ : state) {
        if (bar->value() + step > bar->maximum() || bar->value() + step < bar->minimum()) {
            step = -step;
        }
        bar->setValue(bar->value() + step);
        window.View().viewport()->repaint();
    }
}
BENCHMARK(PanFrame)->Unit(benchmark::kMillisecond);

// One frame of zooming in or out around the middle, the whole project in view at the far end.
void ZoomFrame(benchmark::State& state) {
    StudioWindow window;
    ShowQuietly(window);
    Open(window, LargeProject(10000), state);
    window.View().SetZoom(1.0);
    bool in = false;
    for (auto _ : state) {
        window.View().ZoomBy(in ? 1.25 : 0.8);
        if (window.View().Zoom() < 0.06 || window.View().Zoom() > 1.0) {
            in = !in;
        }
        window.View().viewport()->repaint();
    }
}
BENCHMARK(ZoomFrame)->Unit(benchmark::kMillisecond);

// Find by name as one types, among 10,000 blocks: the worst case, no block matches.
void FindBlock(benchmark::State& state) {
    StudioWindow window;
    ShowQuietly(window);
    Open(window, LargeProject(10000), state);
    for (auto _ : state) {
        benchmark::DoNotOptimize(window.FindBlock("no such block"));
    }
}
BENCHMARK(FindBlock)->Unit(benchmark::kMillisecond);

// A block dragged one step, its wires and those it now stands across routed again and found
// their way, as the frame that follows the move draws them.
void RouteMovedBlock(benchmark::State& state) {
    StudioWindow window;
    ShowQuietly(window);
    Open(window, LargeProject(10000), state);
    window.View().SetZoom(1.0);
    const std::string key = window.Project().BlockKeys()[window.Project().BlockKeys().size() / 2];
    zerbin::studio::BlockItem* block = window.Scene().Item(key);
    window.View().centerOn(block);
    qreal step = zerbin::studio::CanvasScene::kGrid;
    for (auto _ : state) {
        block->setPos(block->pos() + QPointF(step, 0));
        step = -step;
        for (QGraphicsItem* item : window.Scene().items(block->sceneBoundingRect().adjusted(
                 -zerbin::studio::WireRouter::kDetour, -zerbin::studio::WireRouter::kDetour,
                 zerbin::studio::WireRouter::kDetour, zerbin::studio::WireRouter::kDetour))) {
            if (const auto* wire = qgraphicsitem_cast<zerbin::studio::WireItem*>(item)) {
                benchmark::DoNotOptimize(wire->Points().size());
            }
        }
    }
}
BENCHMARK(RouteMovedBlock)->Unit(benchmark::kMillisecond);

// One paint of the overview of 10,000 blocks, and one picture of the drawing made again.
void OverviewPaint(benchmark::State& state) {
    StudioWindow window;
    ShowQuietly(window);
    Open(window, LargeProject(10000), state);
    window.Overview().Redraw();
    QWidget* map = window.Overview().widget();
    for (auto _ : state) {
        map->repaint();
    }
}
BENCHMARK(OverviewPaint)->Unit(benchmark::kMillisecond);

void OverviewRedraw(benchmark::State& state) {
    StudioWindow window;
    ShowQuietly(window);
    Open(window, LargeProject(10000), state);
    for (auto _ : state) {
        window.Overview().Redraw();
    }
}
BENCHMARK(OverviewRedraw)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    // Benchmarks run on build machines without a display.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    for (const auto& [what, file] : GeneratedFiles()) {
        std::remove(file.c_str());
    }
    return 0;
}
