// Fuzz target: a definition document. The input becomes the definition of one block type,
// which is created against the shipped dictionary and device, imaged in both byte orders,
// saved to project XML and loaded back into a second block.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "base/Xml.h"
#include "fuzz/FuzzSupport.h"
#include "interfaces/Error.h"
#include "platform/DefinitionStore.h"

namespace {

// One name for every input: the store replaces the document of a name, so memory stays flat
// however long the run. The folder of this type does not exist, so no file is ever read for it.
const std::string kType = "FUZZ_DEFINITION";

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    zerbin::fuzz::SetUpShippedData();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    auto document = zerbin::xml::LoadString(zerbin::fuzz::AsText(data, size), nullptr);
    if (!document) {
        return 0;
    }
    zerbin::DefinitionCache().Store()->AddDocument(document, kType);

    // The short float setting changes the layout; let the input choose it.
    const bool manageShortFloat = (size % 2) != 0;
    const auto block = zerbin::fuzz::MakeBlock(kType, manageShortFloat);
    block->IAppObject_UserName("Fuzz");
    zerbin::fuzz::ImageBoth(*block);
    zerbin::fuzz::ReadDisplays(*block);

    pugi::xml_document sim;
    try {
        block->IAppObject_XMLSaveSim(sim.append_child("Sim"), sim);
        block->IAppObject_XMLSaveForInteroperability(sim.append_child("Interop"), sim);
    } catch (const zerbin::Error&) {
        // An invalid XML name reaches the caller by design.
    }
    if (const auto saved = zerbin::fuzz::Save(*block)) {
        const auto copy = zerbin::fuzz::MakeBlock(kType, manageShortFloat);
        copy->IAppObject_XmlLoad(saved->element);
        zerbin::fuzz::ImageBoth(*copy);
        copy->IAppObject_Destroy();
    }
    block->IAppObject_Destroy();
    return 0;
}
