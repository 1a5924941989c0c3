#include "datatypes/CDBUnits.h"

#include <gtest/gtest.h>

#include "interfaces/Error.h"

namespace zerbin {
namespace {

// The lookup rules themselves belong to KeyedCollection; here only that a unit is filed under
// its name, not under its type id, and that a taken name keeps the first unit.
TEST(CDBUnits, AddUnitFilesTheUnitUnderItsName) {
    CDBUnits units;
    auto first = units.AddUnit("105", "degC", "147");
    units.AddUnit("63", "DEGF", "");
    EXPECT_THROW(units.AddUnit("39", "DEGC", ""), Error);
    ASSERT_EQ(units.Count(), 2);
    EXPECT_EQ(first->UnitTypeID, "105");
    EXPECT_EQ(first->UnitName, "degC");
    EXPECT_EQ(first->DifferentialTypeID, "147");
    EXPECT_EQ(units.Item("DEGC"), first);
    EXPECT_EQ(units.Item("2")->UnitName, "DEGF");
    EXPECT_EQ(units.Item("105"), nullptr);
    EXPECT_EQ(units.NewEnum()[0], first);
}

}  // namespace
}  // namespace zerbin
