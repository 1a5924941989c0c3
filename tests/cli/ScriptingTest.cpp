// The command as scripts use it: every failure ends in a message naming what failed and an
// exit status, a failing block type does not end the run, load prints one line a block, the
// blocks' messages reach stderr and numbers follow the user's locale.

#include <gmock/gmock.h>
#include <locale.h>
#include <sys/stat.h>

#include "tests/support/ProgramRunner.h"

namespace zerbin::testing {
namespace {

struct Row {
    std::vector<std::string> args;
    int status;
    std::string err;  // a line stderr must hold
};

void ExpectRows(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.args));
        const ProgramResult result = RunProgram(row.args);
        EXPECT_EQ(result.status, row.status);
        EXPECT_NE(result.err.find(row.err + "\n"), std::string::npos) << result.err;
    }
}

TEST(Scripting, EveryUnreadableFileExitsThreeWithItsNameAndTheReason) {
    TempFolder folder;
    const std::filesystem::path dir = folder.Path();
    const std::string lib = (dir / "lib").string();
    std::filesystem::create_directories(dir / "lib" / "PIPE");
    std::filesystem::create_directories(dir / "lib" / "BIG");
    const std::string pipe = (dir / "lib" / "PIPE" / "PIPE.xml").string();
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const std::string big = folder.Write("lib/BIG/BIG.xml", "<AppObject/>").string();
    std::filesystem::resize_file(big, std::uintmax_t{65} << 20);  // sparse: nothing is written
    const std::string project =
        folder.Write("p.xml", "<Project><PIPE/><THERMOSTAT/></Project>").string();
    const std::string readPipe = "cannot read definition '" + pipe + "': is a named pipe";
    const std::string broken =
        folder.Write("broken.xml", "<SNVTS>\n  <SNVT_105>\n</SNVTS>\n").string();
    const std::string missing = (dir / "missing.xml").string();
    const std::string mismatch = "': start-end tags mismatch at line 3, column 3";
    ExpectRows({
        {{"--dictionary", broken, "types"},
         3,
         "zerbin: error: cannot read dictionary '" + broken + mismatch},
        {{"load", broken}, 3, "zerbin: error: cannot read project '" + broken + mismatch},
        {{"--device", missing, "check"},
         3,
         "zerbin: error: cannot read device document '" + missing + "': no such file or directory"},
        {{"--library", missing, "types"},
         3,
         "zerbin: error: cannot read library '" + missing + "': no such file or directory"},
        {{"--library", lib, "image", "PIPE"}, 3, "zerbin: error: " + readPipe},
        {{"--library", lib, "check"},
         3,
         "zerbin: error: cannot read definition '" + big + "': file too large"},
        {{"--library", lib, "load", project},
         3,
         "zerbin: error: element 1 'PIPE' of project '" + project + "': " + readPipe},
    });
}

TEST(Scripting, OneFailingBlockTypeDoesNotEndCheckOrLoad) {
    TempFolder folder;
    // An object ID beyond 32 bits fails the image with an overflow.
    folder.Write("lib/A_OVER/A_OVER.xml", "<AppObject><ID>99999999999</ID></AppObject>");
    folder.Write("lib/GOOD/GOOD.xml", "<AppObject><NAME>Good</NAME><ID>10</ID></AppObject>");
    const std::string lib = (folder.Path() / "lib").string();
    const std::string project =
        folder.Write("p.xml", "<Project><A_OVER/><GOOD><UserName>g</UserName></GOOD></Project>")
            .string();
    const ProgramResult check = RunProgram({"--library", lib, "check"});
    EXPECT_EQ(check.status, 1);
    EXPECT_EQ(check.err, "zerbin: error: block type 'A_OVER': overflow\n");
    const ProgramResult load = RunProgram({"--library", lib, "load", project});
    EXPECT_EQ(load.status, 1);
    EXPECT_EQ(load.out, "g\tGOOD\t03000A\n");
    EXPECT_EQ(load.err,
              "zerbin: error: element 1 'A_OVER' of project '" + project + "': overflow\n");
}

TEST(Scripting, LoadPrintsOneLinePerBlockWhateverTheUserNameHolds) {
    TempFolder folder;
    const std::string project =
        folder
            .Write("p.xml",
                   "<Project><Q_EMPTY><UserName>a\tb&#13;&#10;c\\d\n</UserName></Q_EMPTY>"
                   "</Project>")
            .string();
    const ProgramResult load = RunProgram({"load", project});
    EXPECT_EQ(load.status, 0) << load.err;
    EXPECT_EQ(load.out, "a\\tb\\r\\nc\\\\d\\n\tQ_EMPTY\t000139\n");
}

TEST(Scripting, SetTakesEnumLabelsAndReportsWhatTheEditorsWouldRefuse) {
    const std::string heat = RunProgram({"image", "THERMOSTAT", "--set", "Mode=1"}).out;
    const ProgramResult byLabel = RunProgram({"image", "THERMOSTAT", "--set", "Mode=HVAC_HEAT"});
    EXPECT_EQ(byLabel.status, 0) << byLabel.err;
    EXPECT_EQ(byLabel.out, heat);
    EXPECT_EQ(RunProgram({"image", "THERMOSTAT", "--set", "CoolSetpoint=35"}).err,
              "");  // the limit
    const std::string written = "; written as given";
    ExpectRows({
        {{"image", "THERMOSTAT", "--set", "Mode=42"},
         1,
         "zerbin: error: --set Mode=42: '42' is no code or name of the enumeration" + written},
        {{"image", "THERMOSTAT", "--set", "CoolSetpoint=warm"},
         1,
         "zerbin: error: --set CoolSetpoint=warm: 'warm' is not a number" + written},
        {{"save", "THERMOSTAT", "--set", "CoolSetpoint=50"},
         1,
         "zerbin: error: --set CoolSetpoint=50: 50 is outside the limits 15 to 35" + written},
    });
}

TEST(Scripting, OutputThatCannotBeWrittenIsAFailure) {
    const ProgramResult result = RunProgram({"save", "THERMOSTAT"}, {}, "C", "/dev/full");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "zerbin: error: cannot write the output: no space left on device\n");
}

TEST(Zerbin, MessagesOfTheBlocksGoToStderrAsTitleAndText) {
    // 999 is no type of the dictionary: the selector's write and the image both look it up.
    const ProgramResult result = RunProgram({"image", "TYPE_MUX", "--set", "DataType=999"});
    EXPECT_EQ(result.status, 0);
    // The image is still built; the selector's byte is the factor of an unknown type, 0.
    EXPECT_EQ(result.out, "0C0134000000000000000002\n");
    EXPECT_THAT(result.err, ::testing::MatchesRegex("(Zerbin: Error: SNVT_999 is not defined\n)+"));
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
