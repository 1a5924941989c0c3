#include "datatypes/CDBUnits.h"

#include <gtest/gtest.h>

#include "interfaces/Error.h"

namespace zerbin {
namespace {

TEST(CDBUnits, NewListIsEmpty) {
    CDBUnits units;
    EXPECT_EQ(units.Count(), 0);
    EXPECT_TRUE(units.NewEnum().empty());
    EXPECT_EQ(units.Item("1"), nullptr);
}

TEST(CDBUnits, AddUnitFillsTheUnitAndKeepsTheOrder) {
    CDBUnits units;
    auto first = units.AddUnit("105", "DEGC", "147");
    units.AddUnit("63", "DEGF", "");
    ASSERT_EQ(units.Count(), 2);
    EXPECT_EQ(first->UnitTypeID, "105");
    EXPECT_EQ(first->UnitName, "DEGC");
    EXPECT_EQ(first->DifferentialTypeID, "147");
    EXPECT_EQ(units.NewEnum()[0], first);
    EXPECT_EQ(units.NewEnum()[1]->UnitName, "DEGF");
}

TEST(CDBUnits, ItemLooksUpTheNameFirstAndThenThePosition) {
    CDBUnits units;
    units.AddUnit("105", "DEGC", "");
    units.AddUnit("63", "DEGF", "");
    units.AddUnit("39", "1", "");
    struct Row {
        const char* key;
        const char* unitName;  // nullptr: none
    };
    const Row rows[] = {
        {"degF", "DEGF"}, {"DEGC", "DEGC"}, {"2", "DEGF"},    {"1", "1"},
        {"3", "1"},       {"4", nullptr},   {"0", nullptr},   {"kelvin", nullptr},
        {"", nullptr},    {"2abc", "DEGF"}, {"1.5", nullptr}, {"-1", nullptr},
    };
    for (const Row& row : rows) {
        auto unit = units.Item(row.key);
        if (row.unitName == nullptr) {
            EXPECT_EQ(unit, nullptr) << "key \"" << row.key << "\"";
        } else {
            ASSERT_NE(unit, nullptr) << "key \"" << row.key << "\"";
            EXPECT_EQ(unit->UnitName, row.unitName) << "key \"" << row.key << "\"";
        }
    }
}

TEST(CDBUnits, AddingANameTwiceThrowsAndKeepsTheFirstUnit) {
    CDBUnits units;
    units.AddUnit("105", "degC", "");
    EXPECT_THROW(units.AddUnit("39", "DEGC", ""), Error);
    ASSERT_EQ(units.Count(), 1);
    EXPECT_EQ(units.Item("degc")->UnitTypeID, "105");
}

}  // namespace
}  // namespace zerbin
