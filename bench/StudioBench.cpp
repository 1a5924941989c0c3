// The studio with a large project, offscreen: opening a project of 10,000 blocks (half of
// them wired in pairs) in the model alone and in the whole window with its canvas, and one
// frame of panning and of zooming over it once open. The window's figure less the model's is
// what the studio adds to the engine's own load.
// Run: build with -DZERBIN_BENCH=ON, then build/studio/StudioBench.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QDir>
#include <QScrollBar>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "studio/BlockFactory.h"
#include "studio/CanvasScene.h"
#include "studio/StudioProject.h"
#include "studio/StudioWindow.h"

namespace {

using zerbin::studio::BlockFactory;
using zerbin::studio::StudioProject;
using zerbin::studio::StudioWindow;
using zerbin::studio::Wire;

constexpr int kBlocks = 10000;

// Pairs of an input channel wired into a thermostat, on a grid, saved once for all runs.
const std::string& LargeProject() {
    static const std::string file = [] {
        StudioWindow window;
        window.Log().SetPresenter(nullptr);
        StudioProject& project = window.Project();
        for (int i = 0; i < kBlocks / 2; ++i) {
            const QPointF at((i % 50) * 500.0, (i / 50) * 160.0);
            const std::string sensor = project.AddBlock("IO_CHANNEL", at);
            const std::string thermostat = project.AddBlock("THERMOSTAT", at + QPointF(220, 0));
            project.Connect(Wire{sensor, "Value", thermostat, "SpaceTemp"});
        }
        const std::string path = QDir::temp().filePath("zerbin-studio-bench.xml").toStdString();
        std::ofstream(path) << project.Text();
        return path;
    }();
    return file;
}

// The project model alone, with no window: the engine's load and the studio's wires.
void ModelOpen(benchmark::State& state) {
    const std::string& file = LargeProject();
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
    state.counters["blocks"] = kBlocks;
}
BENCHMARK(ModelOpen)->Unit(benchmark::kMillisecond)->Iterations(3);

// A window of a usual size on the screen, its messages kept out of boxes.
void ShowQuietly(StudioWindow& window) {
    window.Log().SetPresenter(nullptr);
    window.resize(1280, 800);
    window.show();
}

void WindowOpen(benchmark::State& state) {
    const std::string& file = LargeProject();
    StudioWindow window;
    ShowQuietly(window);
    for (auto _ : state) {
        state.PauseTiming();
        window.NewProject();
        state.ResumeTiming();
        if (!window.OpenProject(QString::fromStdString(file))) {
            state.SkipWithError("the project did not open");
        }
        window.View().viewport()->repaint();
    }
    state.counters["blocks"] = static_cast<double>(window.Project().BlockKeys().size());
}
BENCHMARK(WindowOpen)->Unit(benchmark::kMillisecond)->Iterations(3);

// One frame: move the view and paint it at once, as a drag with the middle button does.
void PanFrame(benchmark::State& state) {
    StudioWindow window;
    ShowQuietly(window);
    window.OpenProject(QString::fromStdString(LargeProject()));
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
    window.OpenProject(QString::fromStdString(LargeProject()));
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
    std::remove(LargeProject().c_str());
    return 0;
}
