// show: the header, the members in the order of the CDB and the outputs of a new block.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/cli/ProgramRunner.h"

namespace zerbin::testing {
namespace {

std::string MembersSection(const std::string& shown) {
    const std::size_t begin = shown.find("Members in layout order:\n");
    const std::size_t end = shown.find("\nOutputs:\n");
    return begin == std::string::npos || end == std::string::npos
               ? std::string()
               : shown.substr(begin, end - begin);
}

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

TEST(ShowCommand, MembersFollowTheirOffsetsWhateverTheirDefinitionOrder) {
    // Here the selector is defined after the inputs and the dependents have no type of
    // their own until the first unit is applied.
    EXPECT_EQ(
        MembersSection(RunProgram({"show", "SETPOINT_UNIT"}).out),
        "Members in layout order:\n"
        "  Kind            Name           SNVT    Class          Length  Order  Position  Value\n"
        "  unit selector   Units          -       Enum           1       1      3         Celsius\n"
        "  input           SetpointShift  105,39  reference      2       2      4         -\n"
        "  unit-dependent  Setpoint       105     SignedNumeric  2       3      6         21 °C\n"
        "  unit-dependent  Hysteresis     105     SignedNumeric  2       4      8         0.5 °C\n"
        "  unit-dependent  FrostLimit     105     SignedNumeric  2       5      10        5 °C\n");
}

// The cells of a table line: columns stand two or more blanks apart.
std::vector<std::string> Cells(const std::string& line) {
    std::vector<std::string> cells;
    std::size_t at = line.find_first_not_of(' ');
    while (at != std::string::npos) {
        std::size_t gap = line.find("  ", at);
        cells.push_back(line.substr(at, gap == std::string::npos ? gap : gap - at));
        at = gap == std::string::npos ? gap : line.find_first_not_of(' ', gap);
    }
    return cells;
}

TEST(ShowCommand, KindsLengthsAndValuesOfTheSpecialMembers) {
    struct Row {
        std::vector<std::string> args;
        std::vector<std::string> cells;
    };
    const std::vector<Row> rows{
        // A tool-only member takes no place: it stands last, with no number or offset.
        {{"show", "ALARM_LIMITS"},
         {"tool-only", "AlarmText", "36", "Textual", "31", "-", "-", "Limit exceeded"}},
        {{"show", "Q_EMPTY"}, {"tool-only", "Comment", "36", "Textual", "31", "-", "-", "Note"}},
        // The standard float is 4 bytes whatever management the device has.
        {{"show", "PID_LOOP"}, {"attribute", "Gain", "51", "Float", "4", "5", "10", "2.5 counts"}},
        // With short floats a Float that does not keep the standard form shrinks to 2 bytes.
        {{"--short-float", "show", "PID_LOOP"},
         {"attribute", "Bias", "55", "Float", "2", "8", "18", "0 %"}},
        {{"show", "TYPE_MUX"},
         {"type selector", "DataType", "-", "Enum", "1", "1", "3", "Temperature"}},
        {{"show", "IO_CHANNEL"}, {"device list", "FaultRelay", "-", "Enum", "1", "2", "4", "None"}},
        // A structure is as long as its fields together.
        {{"show", "SETPOINT_SET"},
         {"attribute", "Setpoints", "106", "Struct", "12", "3", "7",
          "23 °C 25 °C 28 °C 21 °C 19 °C 16 °C"}},
        // Values follow the unit system.
        {{"--units", "us", "show", "THERMOSTAT"},
         {"attribute", "HeatSetpoint", "105", "SignedNumeric", "2", "3", "7", "69.8 °F"}},
    };
    for (const Row& row : rows) {
        const std::vector<std::string> lines = Lines(MembersSection(RunProgram(row.args).out));
        const bool found = std::any_of(lines.begin(), lines.end(), [&](const std::string& line) {
            return Cells(line) == row.cells;
        });
        EXPECT_TRUE(found) << ::testing::PrintToString(row.args) << ": "
                           << ::testing::PrintToString(row.cells);
    }
}

}  // namespace
}  // namespace zerbin::testing
