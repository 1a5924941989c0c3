// Opening a large project: a generated project of 10,000 blocks of the shipped types is
// read a block element at a time, each block created and restored from its element, and every
// image built, with all blocks alive at once as in an open project. pugixml parsing the same
// file alone is the floor; the ratio of the two and the peak memory are printed at the end.
// Run: build with -DZERBIN_BENCH=ON, then build/ProjectLoadBench; with ZERBIN_BENCH_PROJECT
// set it loads that file once instead, for the peak memory of one open project
// (bench/measure.py --alive).
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "app_object/CDBAppObject.h"
#include "base/Xml.h"
#include "base/XmlElementStream.h"
#include "bench/ShippedBlocks.h"
#include "platform/Files.h"
#include "platform/Messages.h"

namespace {

using zerbin::CDBAppObject;
using zerbin::bench::CountingSink;
using zerbin::bench::CreateBlock;
using zerbin::bench::kData;
using zerbin::bench::Shipped;
using zerbin::bench::ShippedTypes;

constexpr int kBlocks = 10000;

std::filesystem::path& ProjectFile() {
    static std::filesystem::path file =
        std::filesystem::temp_directory_path() / "zerbin-bench-project.xml";
    return file;
}

// The project as the tool saves it: every block with its user name, place, image and values.
void WriteProject() {
    const std::vector<std::string> types = ShippedTypes();
    pugi::xml_document project;
    pugi::xml_node root = project.append_child("Project");
    for (int i = 0; i < kBlocks; ++i) {
        const std::string key = "Block" + std::to_string(i + 1);
        auto block = CreateBlock(types[static_cast<std::size_t>(i) % types.size()], key);
        block->IAppObject_UserName(key);
        block->IAppObject_XPosition(40.0 * (i % 100));
        block->IAppObject_YPosition(30.0 * (i / 100));
        block->IAppObject_Stream();
        block->IAppObject_XmlSave(root, project);
        block->IAppObject_Destroy();
    }
    project.save_file(ProjectFile().c_str(), "  ");
}

double PeakRssMebibytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;  // kilobytes on Linux
}

void PugixmlParse(benchmark::State& state) {
    for (auto _ : state) {
        pugi::xml_document document;
        benchmark::DoNotOptimize(document.load_file(ProjectFile().c_str()));
    }
    state.counters["blocks"] = kBlocks;
}

void LoadAndImage(benchmark::State& state) {
    auto sink = std::make_shared<CountingSink>();
    zerbin::SetMessageSink(sink);
    std::size_t imageBytes = 0;
    for (auto _ : state) {
        // Read a block at a time, as the command loads: only the blocks stay alive.
        auto project = zerbin::xml::ElementStream::OpenFile(ProjectFile(), nullptr);
        if (!project) {
            state.SkipWithError("the project does not read");
            return;
        }
        std::vector<std::shared_ptr<CDBAppObject>> blocks;
        blocks.reserve(kBlocks);
        int index = 0;
        while (const pugi::xml_node element = project->Next()) {
            auto block = CreateBlock(element.name(), "Block" + std::to_string(++index));
            block->IAppObject_XmlLoad(element);
            imageBytes += block->IAppObject_Stream().size() / 2;
            blocks.push_back(std::move(block));
        }
        for (const auto& block : blocks) {
            block->IAppObject_Destroy();
        }
    }
    state.counters["blocks"] = kBlocks;
    state.counters["image_bytes"] =
        benchmark::Counter(static_cast<double>(imageBytes), benchmark::Counter::kAvgIterations);
    state.counters["peak_rss_MiB"] = PeakRssMebibytes();
    if (sink->count > 0) {
        state.SkipWithError("the project shows messages");
    }
}

// Keeps the median time of each benchmark, to print the ratio after the table.
class MedianReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median") {
                medians[run.run_name.function_name] = run.GetAdjustedRealTime();
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }
    std::map<std::string, double> medians;
};

}  // namespace

int main(int argc, char** argv) {
    if (!Shipped().dictionary || !Shipped().device) {
        return 3;
    }
    zerbin::SetComponentFolder(kData / "library" / "Zerbin");
    const char* given = std::getenv("ZERBIN_BENCH_PROJECT");
    if (given != nullptr) {
        ProjectFile() = given;
    } else {
        WriteProject();
    }
    std::printf("project: %s, %d blocks, %.1f MB\n", ProjectFile().c_str(), kBlocks,
                static_cast<double>(std::filesystem::file_size(ProjectFile())) / 1e6);

    benchmark::RegisterBenchmark("PugixmlParse", PugixmlParse)
        ->Unit(benchmark::kMillisecond)
        ->Repetitions(5)
        ->ReportAggregatesOnly(true);
    auto* loading = benchmark::RegisterBenchmark("LoadAndImage", LoadAndImage)
                        ->Unit(benchmark::kMillisecond)
                        ->ReportAggregatesOnly(true);
    // A given project is loaded once, for the peak memory of one open project: a second load
    // would read its text again into pages the first one's blocks left to the allocator.
    if (given != nullptr) {
        loading->Iterations(1)->Repetitions(1);
    } else {
        loading->Repetitions(5);
    }
    benchmark::Initialize(&argc, argv);
    MedianReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    const auto parse = reporter.medians.find("PugixmlParse");
    const auto load = reporter.medians.find("LoadAndImage");
    if (parse != reporter.medians.end() && load != reporter.medians.end()) {
        std::printf("median load and image: %.1f ms; pugixml parse: %.1f ms; ratio %.1f\n",
                    load->second, parse->second, load->second / parse->second);
    }
    std::printf("peak RSS: %.1f MiB\n", PeakRssMebibytes());
    return 0;
}
