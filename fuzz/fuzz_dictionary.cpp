// Fuzz target: an SNVT dictionary. The input is installed as the dictionary of the process;
// every type id it names is resolved, and every block type of the shipped library is created
// against it, imaged in both byte orders and shown.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "base/MMain.h"
#include "base/Xml.h"
#include "datatypes/CDBSNVTType.h"
#include "fuzz/FuzzSupport.h"

namespace {

// Enough entries to reach every shape of entry, few enough to keep an execution short.
constexpr int kMaxResolvedIds = 64;

void ResolveEveryId(const pugi::xml_document& dictionary) {
    const pugi::xml_node entries = zerbin::xml::FindFirst(dictionary, "SNVTS");
    int resolved = 0;
    for (pugi::xml_node entry : entries.children()) {
        const std::string name = zerbin::xml::BaseName(entry);
        if (name.rfind("SNVT_", 0) != 0 || ++resolved > kMaxResolvedIds) {
            continue;
        }
        zerbin::CDBSNVTType type;
        type.ResolveByID(name.substr(5));
        type.ISNVType_GenType();
        type.ISNVType_Length();
        type.ISNVType_EnumDesc();
        type.ISNVType_Min();
        type.ISNVType_Max();
        type.ISNVType_Factor();
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    zerbin::fuzz::SetUpShippedData();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    std::shared_ptr<const pugi::xml_document> dictionary =
        zerbin::xml::LoadString(zerbin::fuzz::AsText(data, size), nullptr);
    if (!dictionary) {
        return 0;
    }
    zerbin::SetSnvtDictionary(dictionary);
    ResolveEveryId(*dictionary);

    const bool manageShortFloat = (size % 2) != 0;
    for (const std::string& type : zerbin::fuzz::ShippedTypes()) {
        const auto block = zerbin::fuzz::MakeBlock(type, manageShortFloat);
        zerbin::fuzz::ImageBoth(*block);
        zerbin::fuzz::ReadDisplays(*block);
        block->IAppObject_Destroy();
    }
    return 0;
}
