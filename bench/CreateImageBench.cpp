// What a host pays for each block it places: create a block of a shipped type in the host's
// order and read its image; and the image alone, which the host reads again on each download.
// Run: build with -DZERBIN_BENCH=ON, then build/CreateImageBench.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "app_object/CDBAppObject.h"
#include "bench/ShippedBlocks.h"
#include "platform/Files.h"

namespace {

using zerbin::CDBAppObject;
using zerbin::bench::CountingSink;
using zerbin::bench::CreateBlock;

int32_t MemberCount(CDBAppObject& block) {
    int32_t count = 0;
    if (auto attributes = block.IAppObject_Attributes()) {
        count += attributes->IAttributes_Count();
    }
    if (auto inputs = block.IAppObject_Inputs()) {
        count += inputs->IInputs_Count();
    }
    if (auto outputs = block.IAppObject_Outputs()) {
        count += outputs->IOutputs_Count();
    }
    return count;
}

void CreateAndImage(benchmark::State& state, const std::string& type) {
    auto sink = std::make_shared<CountingSink>();
    zerbin::SetMessageSink(sink);
    // The first block of a type parses its definition into the store; a host pays that once.
    auto first = CreateBlock(type, "Block1");
    state.counters["members"] = MemberCount(*first);
    first->IAppObject_Destroy();
    for (auto _ : state) {
        auto block = CreateBlock(type, "Block1");
        benchmark::DoNotOptimize(block->IAppObject_Stream());
        block->IAppObject_Destroy();
    }
    if (sink->count > 0) {
        state.SkipWithError("the type shows messages");
    }
}

void ImageOnly(benchmark::State& state, const std::string& type) {
    auto block = CreateBlock(type, "Block1");
    for (auto _ : state) {
        benchmark::DoNotOptimize(block->IAppObject_Stream());
    }
    block->IAppObject_Destroy();
}

}  // namespace

int main(int argc, char** argv) {
    using zerbin::bench::Shipped;
    if (!Shipped().dictionary || !Shipped().device) {
        return 3;
    }
    zerbin::SetComponentFolder(zerbin::bench::kData / "library" / "Zerbin");
    for (const std::string& type : zerbin::bench::ShippedTypes()) {
        benchmark::RegisterBenchmark(
            ("CreateAndImage/" + type).c_str(),
            [type](benchmark::State& state) { CreateAndImage(state, type); })
            ->Unit(benchmark::kMicrosecond)
            ->Repetitions(5)
            ->ReportAggregatesOnly(true);
        benchmark::RegisterBenchmark(("Image/" + type).c_str(),
                                     [type](benchmark::State& state) { ImageOnly(state, type); })
            ->Unit(benchmark::kMicrosecond)
            ->Repetitions(5)
            ->ReportAggregatesOnly(true);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
