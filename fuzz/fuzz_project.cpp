// Fuzz target: a project document, read whole and one element at a time, which must answer
// alike: the same reason for a refusal, the same elements otherwise. Each element the stream
// gives is loaded into a block of a shipped type (the type it names, else one picked by its
// position), which is then imaged, saved, and loaded into a second block that must come out
// the same.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "base/Xml.h"
#include "base/XmlElementStream.h"
#include "fuzz/FuzzSupport.h"

namespace {

// Bounds the work of one execution; the loader itself has no such limit.
constexpr int kMaxBlocks = 16;

const std::string& TypeFor(const std::string& elementName, std::size_t position) {
    const std::vector<std::string>& types = zerbin::fuzz::ShippedTypes();
    const auto named = std::find(types.begin(), types.end(), elementName);
    return named != types.end() ? *named : types[position % types.size()];
}

std::string Printed(pugi::xml_node element) {
    std::ostringstream out;
    element.print(out, "", pugi::format_raw);
    return out.str();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    zerbin::fuzz::SetUpShippedData();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const std::string_view text = zerbin::fuzz::AsText(data, size);
    zerbin::xml::ParseError wholeError;
    const auto project = zerbin::xml::LoadString(text, &wholeError);
    zerbin::xml::ParseError streamError;
    std::optional<zerbin::xml::ElementStream> stream =
        zerbin::xml::ElementStream::OpenString(text, &streamError);
    if (stream.has_value() != (project != nullptr)) {
        zerbin::fuzz::Fail("the element stream and the whole reader disagree",
                           project ? streamError.reason : wholeError.reason);
    }
    if (!project) {
        if (streamError.reason != wholeError.reason || streamError.offset != wholeError.offset) {
            zerbin::fuzz::Fail("the element stream refuses for another reason",
                               streamError.reason + " / " + wholeError.reason);
        }
        return 0;
    }
    // Projects travel between machines with either decimal separator.
    zerbin::fuzz::UseDecimalComma((size % 2) != 0);
    const bool manageShortFloat = (size % 4) >= 2;

    std::size_t position = 0;
    pugi::xml_node expected = project->document_element().first_child();
    while (const pugi::xml_node element = stream->Next()) {
        while (expected && expected.type() != pugi::node_element) {
            expected = expected.next_sibling();
        }
        if (!expected || Printed(element) != Printed(expected)) {
            zerbin::fuzz::Fail("the element stream gives another element", Printed(element));
        }
        expected = expected.next_sibling();
        if (position == kMaxBlocks) {
            continue;  // compared, not loaded
        }
        const std::string& type = TypeFor(zerbin::xml::BaseName(element), position++);
        const auto block = zerbin::fuzz::MakeBlock(type, manageShortFloat);
        block->IAppObject_XmlLoad(element);
        zerbin::fuzz::ImageBoth(*block);
        zerbin::fuzz::ReadDisplays(*block);
        zerbin::fuzz::CheckRoundTrip(*block, manageShortFloat);
        block->IAppObject_Destroy();
    }
    while (expected && expected.type() != pugi::node_element) {
        expected = expected.next_sibling();
    }
    if (expected) {
        zerbin::fuzz::Fail("the element stream ends early", Printed(expected));
    }
    return 0;
}
