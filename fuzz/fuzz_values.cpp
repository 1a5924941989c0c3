// Fuzz target: value texts. The input is a list of records "N:text" or "N*R:text", separated
// by the record separator byte 0x1E; each text, repeated R times in the second form (so
// that a short input builds a long value), is written to attribute N of the shipped library,
// the attributes of all its block types counted in one row (N taken modulo their number).
// Each block written to is then shown, imaged, and saved and loaded round.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/FuzzSupport.h"

namespace {

constexpr char kRecordSeparator = '\x1E';
// A value built by repetition stays below this, so that one input stays quick to check.
constexpr std::size_t kMaxBuiltValue = 1u << 16;

struct Record {
    uint64_t index = 0;
    std::string text;
};

// Up to nine digits at the start of text, as a number; at is moved past them.
uint64_t Digits(std::string_view text, std::size_t& at) {
    uint64_t number = 0;
    const std::size_t first = at;
    while (at < text.size() && at - first < 9 && text[at] >= '0' && text[at] <= '9') {
        number = number * 10 + static_cast<uint64_t>(text[at] - '0');
        ++at;
    }
    return number;
}

// "N:text" gives N and text, "N*R:text" the text R times; a record without that head is
// text for attribute 0.
Record ParseRecord(std::string_view record) {
    Record parsed;
    std::size_t i = 0;
    parsed.index = Digits(record, i);
    uint64_t repeat = 1;
    if (i < record.size() && record[i] == '*') {
        ++i;
        repeat = Digits(record, i);
    }
    if (i < record.size() && record[i] == ':') {
        record.remove_prefix(i + 1);
    } else {
        parsed.index = 0;
        repeat = 1;
    }
    const uint64_t most = record.empty() ? 0 : kMaxBuiltValue / record.size();
    for (uint64_t n = 0; n < std::min(repeat, most); ++n) {
        parsed.text += record;
    }
    if (repeat > 0 && most == 0) {
        parsed.text = std::string(record);
    }
    return parsed;
}

// Where attribute N of the library is: its block type and its place among the attributes.
struct Place {
    std::string type;
    std::size_t position = 0;
};

// Every attribute of the library once, in the order of the types and of their members.
const std::vector<Place>& Places() {
    static const std::vector<Place> places = [] {
        std::vector<Place> found;
        for (const std::string& type : zerbin::fuzz::ShippedTypes()) {
            const auto block = zerbin::fuzz::MakeBlock(type, false);
            if (const auto attributes = block->IAppObject_Attributes()) {
                const std::size_t count = attributes->IAttributes_NewEnum().size();
                for (std::size_t i = 0; i < count; ++i) {
                    found.push_back({type, i});
                }
            }
            block->IAppObject_Destroy();
        }
        return found;
    }();
    return places;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    zerbin::fuzz::SetUpShippedData();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    zerbin::fuzz::UseDecimalComma((size % 2) != 0);
    const bool manageShortFloat = (size % 4) >= 2;

    // Only the blocks written to are made: a whole library for each input is slow to fuzz.
    std::map<std::string, std::shared_ptr<zerbin::CDBAppObject>> blocks;
    const std::vector<Place>& places = Places();
    std::string_view input = zerbin::fuzz::AsText(data, size);
    while (!input.empty() && !places.empty()) {
        const std::size_t end = input.find(kRecordSeparator);
        const Record record = ParseRecord(input.substr(0, end));
        const Place& place = places[record.index % places.size()];
        auto& block = blocks[place.type];
        if (!block) {
            block = zerbin::fuzz::MakeBlock(place.type, manageShortFloat);
        }
        block->IAppObject_Attributes()
            ->IAttributes_NewEnum()
            .at(place.position)
            ->IAttribute_Value(record.text);
        input.remove_prefix(end == std::string_view::npos ? input.size() : end + 1);
    }

    for (const auto& [type, block] : blocks) {
        zerbin::fuzz::ReadDisplays(*block);
        zerbin::fuzz::ImageBoth(*block);
        zerbin::fuzz::CheckRoundTrip(*block, manageShortFloat);
        block->IAppObject_Destroy();
    }
    return 0;
}
