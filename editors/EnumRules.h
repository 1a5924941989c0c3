// The rule of the enumeration editor that is not about widgets: the entry that a stored
// value selects.
#pragma once

#include <string>
#include <vector>

#include "datatypes/EnumEntries.h"

namespace zerbin {

// The last entry whose code written in decimal equals value exactly; else the first entry;
// -1 for no entries.
int SelectedEnumIndex(const std::vector<EnumEntry>& entries, const std::string& value);

}  // namespace zerbin
