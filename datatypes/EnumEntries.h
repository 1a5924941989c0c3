// The entries of an enum description ("code,label;" each) as the enumeration editor lists
// them and as every writer of a value by its label reads them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zerbin {

struct EnumEntry {
    std::string label;
    int16_t code = 0;
};

// Entries up to the first empty one; a description without any ";" has none. An entry
// without "," has code 0 and an empty label. A code beyond 16-bit signed ends the list there,
// with the entries made so far. One pass: device lists run to many thousands of entries.
std::vector<EnumEntry> EnumEntries(const std::string& description);

// The code that text stands for in entries: text itself when it is the decimal code of an
// entry, else the code of the last entry labelled text; nothing when neither.
std::optional<int16_t> EnumCodeOf(const std::vector<EnumEntry>& entries, const std::string& text);

}  // namespace zerbin
