#include "datatypes/EnumEntries.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace zerbin {
namespace {

std::string Listed(const std::vector<EnumEntry>& entries) {
    std::string text;
    for (const EnumEntry& entry : entries) {
        text += std::to_string(entry.code) + "=" + entry.label + " ";
    }
    return text;
}

TEST(EnumEntries, ListsEntriesUpToTheFirstEmptyOneOrABadCode) {
    const struct {
        const char* description;
        const char* listed;
    } rows[] = {
        {"0,OFF;1,ON;", "0=OFF 1=ON "},
        {"0,OFF;1,ON", "0=OFF 1=ON "},
        {"0,OFF", ""},  // no ";": nothing to list
        {"0,OFF;;2,TWO;", "0=OFF "},
        {"5;1,A;", "0= 1=A "},  // no ",": code 0, no label
        {"1,A,extra;", "1=A "},
        {"1,A;40000,B;2,C;", "1=A "},
        {"-3,NEG;2.6,ROUND;", "-3=NEG 3=ROUND "},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Listed(EnumEntries(row.description)), row.listed) << row.description;
    }
}

TEST(EnumCodeOf, TakesACodeOrTheLastEntryOfALabel) {
    const std::vector<EnumEntry> entries = EnumEntries("105,Celsius;39,Wide;7,Celsius;3,39;");
    const struct {
        const char* text;
        std::optional<int16_t> code;
    } rows[] = {
        {"105", 105},
        {"Celsius", 7},
        {"Wide", 39},
        {"39", 39},
        {"3", 3},
        {"celsius", std::nullopt},
        {"0105", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(EnumCodeOf(entries, row.text), row.code) << row.text;
    }
}

}  // namespace
}  // namespace zerbin
