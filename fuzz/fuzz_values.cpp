// Fuzz target: value texts. The input is a list of records "N:text", separated by the
// record separator byte 0x1E; each text is written to attribute N of the shipped library,
// the attributes of all its block types counted in one row (N taken modulo their number).
// Each block written to is then shown, imaged, and saved and loaded round.
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

struct Record {
    uint64_t index = 0;
    std::string text;
};

// "N:text" gives N and text; a record without a leading number is text for attribute 0.
Record ParseRecord(std::string_view record) {
    Record parsed;
    std::size_t i = 0;
    while (i < record.size() && i < 9 && record[i] >= '0' && record[i] <= '9') {
        parsed.index = parsed.index * 10 + static_cast<uint64_t>(record[i] - '0');
        ++i;
    }
    if (i < record.size() && record[i] == ':') {
        record.remove_prefix(i + 1);
    } else {
        parsed.index = 0;
    }
    parsed.text = std::string(record);
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
