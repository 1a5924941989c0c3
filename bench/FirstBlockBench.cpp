// What the first block of a type costs in a process that has already made blocks: the
// definition read and parsed, the type compiled, the block created and imaged. Every
// iteration places a type the process has not seen, a copy of ROOM_CONTROLLER (20 members)
// under a name of its own in a library written to the temporary folder beforehand.
// Run: build with -DZERBIN_BENCH=ON, then build/bench/FirstBlockBench.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "app_object/CDBAppObject.h"
#include "bench/ShippedBlocks.h"
#include "platform/Files.h"

namespace {

namespace fs = std::filesystem;

constexpr int kIterations = 300;
constexpr int kRepetitions = 5;

// A library with the shipped types and the shared datasheets, and kTypes copies of one type.
class CopiedLibrary {
public:
    CopiedLibrary() {
        fs::remove_all(folder_);
        fs::create_directories(folder_);
        fs::copy(zerbin::bench::kData / "library", folder_, fs::copy_options::recursive);
        const fs::path source =
            zerbin::bench::kData / "library" / "ROOM_CONTROLLER" / "ROOM_CONTROLLER.xml";
        for (int n = 0; n < kTypes; ++n) {
            const std::string type = Type(n);
            fs::create_directories(folder_ / type);
            fs::copy_file(source, folder_ / type / (type + ".xml"));
        }
    }
    ~CopiedLibrary() {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }
    CopiedLibrary(const CopiedLibrary&) = delete;
    CopiedLibrary& operator=(const CopiedLibrary&) = delete;

    static std::string Type(int n) { return "ROOM_CONTROLLER_" + std::to_string(n); }
    const fs::path& Folder() const { return folder_; }

    // Enough for every iteration of every repetition, and the warm-up.
    static constexpr int kTypes = kIterations * (kRepetitions + 1) + 1;

private:
    fs::path folder_ = fs::temp_directory_path() / "zerbin-first-block-library";
};

void FirstBlockOfAType(benchmark::State& state, int& next) {
    for (auto _ : state) {
        auto block = zerbin::bench::CreateBlock(CopiedLibrary::Type(next++), "Block1");
        benchmark::DoNotOptimize(block->IAppObject_Stream());
        block->IAppObject_Destroy();
    }
}

}  // namespace

int main(int argc, char** argv) {
    using zerbin::bench::Shipped;
    if (!Shipped().dictionary || !Shipped().device) {
        return 3;
    }
    const CopiedLibrary library;
    zerbin::SetComponentFolder(library.Folder() / "Zerbin");
    // Warm: the dictionary indexed, every shipped type placed once, and one copy.
    for (const std::string& type : zerbin::bench::ShippedTypes()) {
        zerbin::bench::CreateBlock(type, "Warm")->IAppObject_Destroy();
    }
    int next = 0;
    zerbin::bench::CreateBlock(CopiedLibrary::Type(next++), "Warm")->IAppObject_Destroy();

    benchmark::RegisterBenchmark(
        "FirstBlockOfAType/ROOM_CONTROLLER",
        [&next](benchmark::State& state) { FirstBlockOfAType(state, next); })
        ->Unit(benchmark::kMicrosecond)
        ->Iterations(kIterations)
        ->Repetitions(kRepetitions)
        ->ReportAggregatesOnly(true);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
