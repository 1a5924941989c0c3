// What a whole run does around the commands: how the messages of the blocks reach the user,
// and the user's locale.

#include <locale.h>

#include "tests/support/ProgramRunner.h"

namespace zerbin::testing {
namespace {

TEST(Zerbin, MessagesOfTheBlocksGoToStderrAsTitleAndText) {
    // 999 is no type of the dictionary: the selector's write and the image both look it up.
    const ProgramResult result = RunProgram({"image", "TYPE_MUX", "--set", "DataType=999"});
    EXPECT_EQ(result.status, 0);
    // The image is still built; the selector's byte is the factor of an unknown type, 0.
    EXPECT_EQ(result.out, "0C0134000000000000000002\n");
    const std::vector<std::string> lines = Lines(result.err);
    ASSERT_FALSE(lines.empty());
    for (const std::string& line : lines) {
        EXPECT_EQ(line, "Zerbin: Error: SNVT_999 is not defined");
    }
}

TEST(Zerbin, NumbersFollowTheUsersLocale) {
    locale_t comma = newlocale(LC_NUMERIC_MASK, "de_DE.UTF-8", static_cast<locale_t>(nullptr));
    if (comma == static_cast<locale_t>(nullptr)) {
        GTEST_SKIP() << "locale de_DE.UTF-8 is not installed (.ci/install makes it)";
    }
    freelocale(comma);
    TempFolder folder;
    const std::vector<std::string> save{"save",  "THERMOSTAT", "--x",
                                        "120.5", "--set",      "HeatSetpoint=20.5"};
    const ProgramResult german = RunProgram(save, {}, "de_DE.UTF-8");
    EXPECT_EQ(german.status, 0) << german.err;
    EXPECT_NE(german.out.find("<X_Position>120,5</X_Position>"), std::string::npos);
    EXPECT_NE(german.out.find("<HeatSetpoint>20,5</HeatSetpoint>"), std::string::npos);
    // A project written with a comma loads to the same image on a machine with a point.
    const std::string project = folder.Write("project.xml", german.out).string();
    const ProgramResult loaded = RunProgram({"load", project});
    EXPECT_EQ(
        loaded.out,
        "\tTHERMOSTAT\t" + RunProgram({"image", "THERMOSTAT", "--set", "HeatSetpoint=20.5"}).out);
}

}  // namespace
}  // namespace zerbin::testing
