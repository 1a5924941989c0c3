// How long resolving a type record takes once the dictionary is indexed: the cost each
// attribute, output and field pays while a block loads.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "base/MMain.h"
#include "datatypes/CDBSNVTType.h"
#include "datatypes/SnvtDictionary.h"
#include "platform/Messages.h"
#include "base/Xml.h"

namespace zerbin {
namespace {

constexpr int kEntries = 200;

// Every third entry an enumeration of eight values, the others scaled numerics with every key.
std::shared_ptr<const pugi::xml_document> GeneratedDictionary(const std::string& name) {
    std::string text = "<SNVTS>";
    for (int id = 1; id <= kEntries; ++id) {
        const std::string n = std::to_string(id);
        text += "<SNVT_" + n + " FACTOR=\"" + n + "\" R7REGION=\"0\"><NAME>" + name + n + "</NAME>";
        if (id % 3 == 0) {
            text += "<TYPE>Enum</TYPE><Enums>";
            for (int value = 0; value < 8; ++value) {
                text += "<V" + std::to_string(value) + ">" + std::to_string(value) + "</V" +
                        std::to_string(value) + ">";
            }
            text += "</Enums>";
        } else {
            text +=
                "<TYPE>SignedNumeric</TYPE><UNIT>u</UNIT><BACNETUNIT>b</BACNETUNIT>"
                "<MIN>-327.68</MIN><MAX>327.67</MAX><LENGTH>2</LENGTH><A_COEF>1</A_COEF>"
                "<B_COEF>-2</B_COEF><C_COEF>0</C_COEF><INVALIDVALUE>327.67</INVALIDVALUE>";
        }
        text += "</SNVT_" + n + ">";
    }
    text += "</SNVTS>";
    return xml::LoadString(text, nullptr);
}

class SilentSink : public MessageSink {
public:
    int Show(const Message& /*message*/) override { return kMessageOk; }
};

void Resolve(benchmark::State& state, const std::string& id) {
    SetMessageSink(std::make_shared<SilentSink>());
    SetSnvtDictionary(GeneratedDictionary("T"));
    CDBSNVTType first;
    first.ResolveByID(id);  // builds the index
    for (auto _ : state) {
        CDBSNVTType type;
        type.ResolveByID(id);
        benchmark::DoNotOptimize(type.ISNVType_Length());
    }
    SetSnvtDictionary(nullptr);
    SetMessageSink(nullptr);
}

void BM_ResolveNumeric(benchmark::State& state) {
    Resolve(state, "200");
}
BENCHMARK(BM_ResolveNumeric);

void BM_ResolveEnum(benchmark::State& state) {
    Resolve(state, "198");
}
BENCHMARK(BM_ResolveEnum);

void BM_ResolveMissing(benchmark::State& state) {
    Resolve(state, "9999");
}
BENCHMARK(BM_ResolveMissing);

// For comparison: the document walk that each lookup would cost without the index.
void BM_ScanForLastEntry(benchmark::State& state) {
    const auto document = GeneratedDictionary("T");
    for (auto _ : state) {
        benchmark::DoNotOptimize(xml::FindFirst(*document, "SNVTS/SNVT_200"));
    }
}
BENCHMARK(BM_ScanForLastEntry);

// The one-off cost when the host installs another dictionary.
void BM_IndexAfterReplacement(benchmark::State& state) {
    const auto one = GeneratedDictionary("A");
    const auto other = GeneratedDictionary("B");
    bool flip = false;
    for (auto _ : state) {
        SetSnvtDictionary((flip = !flip) ? one : other);
        benchmark::DoNotOptimize(FindSnvtEntry("1"));
    }
    SetSnvtDictionary(nullptr);
}
BENCHMARK(BM_IndexAfterReplacement);

}  // namespace
}  // namespace zerbin
