// A project of blocks whose type this installation lacks: each block is created, finds no
// definition, shows its messages and is given its subtree. A definition that did not load is
// not kept, so every block pays the failed lookup again; this measures what that costs.
// Run: build with -DZERBIN_BENCH=ON, then build/bench/UnknownTypeBench.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "app_object/HostOrder.h"
#include "base/Xml.h"
#include "bench/ShippedBlocks.h"
#include "platform/Files.h"
#include "platform/Messages.h"

namespace {

void UnknownTypeProject(benchmark::State& state) {
    const auto blocks = static_cast<int>(state.range(0));
    std::string text = "<Project>";
    for (int i = 0; i < blocks; ++i) {
        text += "<NOT_INSTALLED><UserName>Block " + std::to_string(i) +
                "</UserName><X_Position>1.5</X_Position><Attributes><A>1</A></Attributes>"
                "</NOT_INSTALLED>";
    }
    text += "</Project>";
    const auto project = zerbin::xml::LoadString(text, nullptr);
    zerbin::SetComponentFolder(zerbin::bench::kData / "library" / "component");
    const auto sink = std::make_shared<zerbin::bench::CountingSink>();
    zerbin::SetMessageSink(sink);
    zerbin::HostSetup setup;
    setup.dictionary = zerbin::bench::Shipped().dictionary;
    for (auto _ : state) {
        for (pugi::xml_node element : project->document_element().children()) {
            auto block = zerbin::NewBlock(element.name(), setup);
            block->IAppObject_XmlLoad(element);
            benchmark::DoNotOptimize(block->IAppObject_Stream());
            block->IAppObject_Destroy();
        }
    }
    state.SetItemsProcessed(state.iterations() * blocks);
}

BENCHMARK(UnknownTypeProject)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
