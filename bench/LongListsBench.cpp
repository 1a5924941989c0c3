// Lists that run long: an input's compatibility list, an enumeration or device list read by
// label. Each must grow linearly with its length (they once took its square: 20 s for
// 100,000 compatible ids). Run: build with -DZERBIN_BENCH=ON, then build/bench/LongListsBench.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "datatypes/CDBCompatibleSNVTs.h"
#include "datatypes/EnumEntries.h"

namespace {

void CompatibilityList(benchmark::State& state) {
    std::string list;
    for (int64_t id = 1; id <= state.range(0); ++id) {
        list += (id == 1 ? "" : ",") + std::to_string(id);
    }
    for (auto _ : state) {
        auto set = std::make_shared<zerbin::CDBCompatibleSNVTs>();
        set->AddList(list);
        benchmark::DoNotOptimize(set->ICompatibleSNVTs_Count());
    }
    state.SetComplexityN(state.range(0));
}

void ListValueByLabel(benchmark::State& state) {
    std::string description;
    for (int64_t code = 0; code < state.range(0); ++code) {
        description += std::to_string(code % 30000) + ",C" + std::to_string(code) + ";";
    }
    const std::string last = "C" + std::to_string(state.range(0) - 1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(zerbin::EnumCodeOf(zerbin::EnumEntries(description), last));
    }
    state.SetComplexityN(state.range(0));
}

BENCHMARK(CompatibilityList)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();
BENCHMARK(ListValueByLabel)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();

}  // namespace
