#include "editors/EnumRules.h"

namespace zerbin {

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
