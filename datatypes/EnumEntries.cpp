#include "datatypes/EnumEntries.h"

#include <string_view>

#include "base/MMain.h"
#include "base/SkipMode.h"

namespace zerbin {
namespace {

// The part of entry between its first and second comma, or to its end.
std::string_view Label(std::string_view entry, std::size_t comma) {
    if (comma == std::string_view::npos) {
        return {};
    }
    const std::string_view rest = entry.substr(comma + 1);
    return rest.substr(0, rest.find(','));
}

}  // namespace

std::vector<EnumEntry> EnumEntries(const std::string& description) {
    std::vector<EnumEntry> entries;
    if (description.find(';') == std::string::npos) {
        return entries;
    }
    SkipStep([&] {
        std::string_view rest = description;
        while (true) {
            const std::size_t end = rest.find(';');
            const std::string_view entry = rest.substr(0, end);
            if (entry.empty()) {
                break;
            }
            const std::size_t comma = entry.find(',');
            const std::string code(comma == std::string_view::npos ? std::string_view()
                                                                   : entry.substr(0, comma));
            entries.push_back({std::string(Label(entry, comma)), ToInt16(LeadingNumber(code))});
            if (end == std::string_view::npos) {
                break;
            }
            rest.remove_prefix(end + 1);
        }
    });
    return entries;
}

std::optional<int16_t> EnumCodeOf(const std::vector<EnumEntry>& entries, const std::string& text) {
    std::optional<int16_t> byLabel;
    for (const EnumEntry& entry : entries) {
        if (std::to_string(entry.code) == text) {
            return entry.code;
        }
        if (entry.label == text) {
            byLabel = entry.code;
        }
    }
    return byLabel;
}

}  // namespace zerbin
