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
#include "platform/Files.h"
#include "platform/Messages.h"
#include "platform/Xml.h"

namespace {

using zerbin::CDBAppObject;

// The shipped data of the source tree this program was built from.
const std::filesystem::path kData =
    std::filesystem::path(__FILE__).parent_path().parent_path() / "data";

struct Documents {
    std::shared_ptr<const pugi::xml_document> dictionary;
    std::shared_ptr<const pugi::xml_document> device;
};

class CountingSink : public zerbin::MessageSink {
public:
    int Show(const zerbin::Message&) override {
        ++count;
        return zerbin::kMessageOk;
    }
    int count = 0;
};

std::shared_ptr<CDBAppObject> CreateBlock(const Documents& documents, const std::string& type) {
    auto block = std::make_shared<CDBAppObject>();
    block->IAppObject_XmlSNVTDoc(documents.dictionary);
    int32_t errorCode = 0;
    block->IAppObject_Init(type, errorCode);
    block->IAppObject_OwnerDeviceXML(documents.device);
    block->IAppObject_ManageShortFloat(false);
    block->IAppObject_Create();
    block->IAppObject_GlobalKey("Block1");
    return block;
}

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

void CreateAndImage(benchmark::State& state, const Documents& documents, const std::string& type) {
    auto sink = std::make_shared<CountingSink>();
    zerbin::SetMessageSink(sink);
    // The first block of a type parses its definition into the store; a host pays that once.
    auto first = CreateBlock(documents, type);
    state.counters["members"] = MemberCount(*first);
    first->IAppObject_Destroy();
    for (auto _ : state) {
        auto block = CreateBlock(documents, type);
        benchmark::DoNotOptimize(block->IAppObject_Stream());
        block->IAppObject_Destroy();
    }
    if (sink->count > 0) {
        state.SkipWithError("the type shows messages");
    }
}

void ImageOnly(benchmark::State& state, const Documents& documents, const std::string& type) {
    auto block = CreateBlock(documents, type);
    for (auto _ : state) {
        benchmark::DoNotOptimize(block->IAppObject_Stream());
    }
    block->IAppObject_Destroy();
}

std::vector<std::string> ShippedTypes() {
    std::vector<std::string> types;
    for (const auto& entry : std::filesystem::directory_iterator(kData / "library")) {
        const std::string name = entry.path().filename().string();
        if (std::filesystem::exists(entry.path() / (name + ".xml"))) {
            types.push_back(name);
        }
    }
    std::sort(types.begin(), types.end());
    return types;
}

}  // namespace

int main(int argc, char** argv) {
    static Documents documents{
        zerbin::xml::LoadFile(kData / "snvts.xml", nullptr),
        zerbin::xml::LoadFile(kData / "devices" / "Controller.xml", nullptr)};
    if (!documents.dictionary || !documents.device) {
        return 3;
    }
    zerbin::SetComponentFolder(kData / "library" / "Zerbin");
    for (const std::string& type : ShippedTypes()) {
        benchmark::RegisterBenchmark(
            ("CreateAndImage/" + type).c_str(),
            [type](benchmark::State& state) { CreateAndImage(state, documents, type); })
            ->Unit(benchmark::kMicrosecond)
            ->Repetitions(5)
            ->ReportAggregatesOnly(true);
        benchmark::RegisterBenchmark(
            ("Image/" + type).c_str(),
            [type](benchmark::State& state) { ImageOnly(state, documents, type); })
            ->Unit(benchmark::kMicrosecond)
            ->Repetitions(5)
            ->ReportAggregatesOnly(true);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
