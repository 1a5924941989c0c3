// The entry a stored value selects in the enumeration editor, without a window.
#include "editors/EnumRules.h"

#include <gtest/gtest.h>

namespace zerbin {
namespace {

TEST(EnumRules, TheLastEntryWhoseCodeIsTheValueExactlyElseTheFirst) {
    const std::vector<EnumEntry> offOn{{"OFF", 0}, {"ON", 1}};
    const std::vector<EnumEntry> twice{{"A", 0}, {"B", 1}, {"C", 1}};
    const std::vector<EnumEntry> negative{{"NUL", -1}, {"A", 0}};
    const struct {
        const std::vector<EnumEntry>* entries;
        const char* value;
        int index;
    } rows[] = {
        {&offOn, "1", 1},  {&offOn, "0", 0},     {&offOn, "7", 0},
        {&offOn, "01", 0}, {&offOn, " 1", 0},    {&offOn, "", 0},
        {&twice, "1", 2},  {&negative, "-1", 0}, {&negative, "0", 1},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(SelectedEnumIndex(*row.entries, row.value), row.index) << row.value;
    }
    EXPECT_EQ(SelectedEnumIndex({}, "3"), -1);
}

}  // namespace
}  // namespace zerbin
