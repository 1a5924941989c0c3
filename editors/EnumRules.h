// The rules of the enumeration editor that are not about widgets: the entries of an enum
// description and the entry that a stored value selects.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zerbin {

struct EnumEntry {
    std::string label;
    int16_t code = 0;
};

// Entries of "code,label;" up to the first empty one. A code beyond 16-bit signed ends the
// list there, with the entries made so far.
std::vector<EnumEntry> EnumEntries(const std::string& description);

// The last entry whose code written in decimal equals value exactly; else the first entry;
// -1 for no entries.
int SelectedEnumIndex(const std::vector<EnumEntry>& entries, const std::string& value);

}  // namespace zerbin
