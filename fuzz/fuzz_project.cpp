// Fuzz target: a project document. Each element under the root is loaded into a block of a
// shipped type (the type it names, else one picked by its position), which is then imaged,
// saved, and loaded into a second block that must come out the same.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "base/Xml.h"
#include "fuzz/FuzzSupport.h"

namespace {

// Bounds the work of one execution; the loader itself has no such limit.
constexpr int kMaxBlocks = 16;

const std::string& TypeFor(const std::string& elementName, std::size_t position) {
    const std::vector<std::string>& types = zerbin::fuzz::ShippedTypes();
    const auto named = std::find(types.begin(), types.end(), elementName);
    return named != types.end() ? *named : types[position % types.size()];
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    zerbin::fuzz::SetUpShippedData();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const auto project = zerbin::xml::LoadString(zerbin::fuzz::AsText(data, size), nullptr);
    if (!project) {
        return 0;
    }
    // Projects travel between machines with either decimal separator.
    zerbin::fuzz::UseDecimalComma((size % 2) != 0);
    const bool manageShortFloat = (size % 4) >= 2;

    std::size_t position = 0;
    for (pugi::xml_node element : project->document_element().children()) {
        if (element.type() != pugi::node_element) {
            continue;
        }
        if (position == kMaxBlocks) {
            break;
        }
        const std::string& type = TypeFor(zerbin::xml::BaseName(element), position++);
        const auto block = zerbin::fuzz::MakeBlock(type, manageShortFloat);
        block->IAppObject_XmlLoad(element);
        zerbin::fuzz::ImageBoth(*block);
        zerbin::fuzz::ReadDisplays(*block);
        zerbin::fuzz::CheckRoundTrip(*block, manageShortFloat);
        block->IAppObject_Destroy();
    }
    return 0;
}
