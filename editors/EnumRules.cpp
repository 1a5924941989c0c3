#include "editors/EnumRules.h"

#include "base/MMain.h"
#include "base/SkipMode.h"

namespace zerbin {

std::vector<EnumEntry> EnumEntries(const std::string& description) {
    std::vector<EnumEntry> entries;
    SkipStep([&] {
        for (int32_t i = 0;; ++i) {
            const std::string entry = NthToken(description, i, ";");
            if (entry.empty()) {
                break;
            }
            const int16_t code = ToInt16(LeadingNumber(NthToken(entry, 0, ",")));
            entries.push_back({NthToken(entry, 1, ","), code});
        }
    });
    return entries;
}

int SelectedEnumIndex(const std::vector<EnumEntry>& entries, const std::string& value) {
    int selected = entries.empty() ? -1 : 0;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (value == std::to_string(entries[i].code)) {
            selected = static_cast<int>(i);
        }
    }
    return selected;
}

}  // namespace zerbin
