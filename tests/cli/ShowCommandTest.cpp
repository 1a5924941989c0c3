// show: the header, the members in the order of the CDB and the outputs of a new block.

#include "tests/support/ProgramRunner.h"

namespace zerbin::testing {
namespace {

TEST(ShowCommand, ShowsHeaderLayoutAndOutputsOfAType) {
    const ProgramResult result = RunProgram({"show", "TIME_DELAY"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(
        result.out,
        "TIME_DELAY: Time delay\n"
        "  ID                306\n"
        "  Description       On and off delay of a switch signal, with a maximum run "
        "time\n"
        "  Category          Logic\n"
        "  ExecTime          2\n"
        "  MaxInstances      64\n"
        "  RAM usage         10\n"
        "  Backup usage      0\n"
        "  Device clock      no\n"
        "  Device dependent  no\n"
        "  Datasheet         no\n"
        "  CDBDimension      14\n"
        "\n"
        "Members in layout order:\n"
        "  Kind            Name        SNVT   Class            Length  Order  Position  Value\n"
        "  extended input  Trigger     95,22  reference        3       1      3         -\n"
        "  input           Reset       95     reference        2       2      6         -\n"
        "  attribute       OnDelay     107    UnsignedNumeric  2       3      8         5 s\n"
        "  attribute       OffDelay    107    UnsignedNumeric  2       4      10        0 s\n"
        "  attribute       MaxRunTime  123    UnsignedNumeric  2       5      12        0 min\n"
        "\n"
        "Outputs:\n"
        "  Output     SNVT  Class            Length  Type-dependent  Reference\n"
        "  Out        95    Struct           0       no              4000\n"
        "  Remaining  107   UnsignedNumeric  2       no              4100\n");
}

}  // namespace
}  // namespace zerbin::testing
