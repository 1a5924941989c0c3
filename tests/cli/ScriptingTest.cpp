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
    EXPECT_EQ(check.err, "zerbin: error: block type 'A_OVER': arithmetic overflow\n");
    const ProgramResult load = RunProgram({"--library", lib, "load", project});
    EXPECT_EQ(load.status, 1);
    EXPECT_EQ(load.out, "g\tGOOD\t03000A\n");
    EXPECT_EQ(load.err, "zerbin: error: element 1 'A_OVER' of project '" + project +
                            "': arithmetic overflow\n");
    // The status the help gives is this one.
    EXPECT_NE(RunProgram({"load", "--help"}).out.find("the rest go on; exit status 1 (3 for"),
              std::string::npos);
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

TEST(Scripting, SetTakesTheLabelsAListShowsAndWritesNothingTheEditorsWouldRefuse) {
    const std::string plain = RunProgram({"image", "SETPOINT_UNIT"}).out;
    const struct {
        std::string type, byCode, byLabel;
    } lists[] = {{"THERMOSTAT", "Mode=1", "Mode=HVAC_HEAT"},
                 {"SETPOINT_UNIT", "Units=39", "Units=CelsiusWide"}};
    for (const auto& list : lists) {
        const ProgramResult byCode = RunProgram({"image", list.type, "--set", list.byCode});
        const ProgramResult byLabel = RunProgram({"image", list.type, "--set", list.byLabel});
        EXPECT_EQ(byLabel.status, 0) << byLabel.err;
        EXPECT_EQ(byLabel.err, "");
        EXPECT_EQ(byLabel.out, byCode.out) << list.byLabel;
    }
    EXPECT_NE(RunProgram({"image", "SETPOINT_UNIT", "--set", "Units=39"}).out, plain);
    EXPECT_EQ(RunProgram({"image", "THERMOSTAT", "--set", "CoolSetpoint=35"}).err,
              "");  // the limit
    // A refused value leaves the image as the type gives it.
    const ProgramResult outside = RunProgram({"image", "SETPOINT_UNIT", "--set", "Units=7"});
    EXPECT_EQ(outside.status, 1);
    EXPECT_EQ(outside.out, plain);
    const std::string refused = "; not written";
    ExpectRows({
        {{"image", "SETPOINT_UNIT", "--set", "Units=7"},
         1,
         "zerbin: error: --set Units=7: '7' is no code or name of the list" + refused},
        {{"image", "THERMOSTAT", "--set", "Mode=42"},
         1,
         "zerbin: error: --set Mode=42: '42' is no code or name of the list" + refused},
        {{"image", "THERMOSTAT", "--set", "CoolSetpoint=warm"},
         1,
         "zerbin: error: --set CoolSetpoint=warm: 'warm' is not a number" + refused},
        {{"save", "THERMOSTAT", "--set", "CoolSetpoint=50"},
         1,
         "zerbin: error: --set CoolSetpoint=50: 50 is outside the limits 15 to 35" + refused},
        {{"image", "THERMOSTAT", "--ref", "SpaceTemp=12"},
         2,
         "zerbin: error: --ref SpaceTemp=12: input SpaceTemp takes 4 hexadecimal digits"},
        {{"image", "THERMOSTAT", "--ref", "SpaceTemp=12G4"},
         2,
         "zerbin: error: --ref expects hexadecimal digits for 'SpaceTemp', found '12G4'"},
    });
}

TEST(Scripting, ABlockWithoutImageOrTypeGetsNoLineAndExitsOne) {
    TempFolder folder;
    std::string members;
    for (int n = 1; n <= 130; ++n) {
        members +=
            "<A" + std::to_string(n) + "><CDBORDERINPOSITION>" + std::to_string(n) +
            "</CDBORDERINPOSITION><SNVTTYPE>105</SNVTTYPE><DefaultValue>1</DefaultValue></A" +
            std::to_string(n) + ">";
    }
    // 130 members of 2 bytes: the last ones start beyond the image's 255 bytes.
    folder.Write("lib/WIDE/WIDE.xml",
                 "<AppObject><ID>7</ID><Attributes>" + members + "</Attributes></AppObject>");
    folder.Write("lib/GOOD/GOOD.xml", "<AppObject><NAME>Good</NAME><ID>10</ID></AppObject>");
    const std::string lib = (folder.Path() / "lib").string();
    for (const char* order : {"", "--intel"}) {
        std::vector<std::string> args = {"--library", lib, "image", "WIDE"};
        if (*order != 0) {
            args.emplace_back(order);
        }
        const ProgramResult image = RunProgram(args);
        EXPECT_EQ(image.status, 1) << order;
        EXPECT_EQ(image.out, "") << order;
        EXPECT_NE(image.err.find("zerbin: error: the image of block type 'WIDE' cannot be made\n"),
                  std::string::npos)
            << image.err;
    }
    const std::string project =
        folder.Write("p.xml", "<Project><GONE/><GOOD/><GONE/><GOOD/></Project>").string();
    const ProgramResult load = RunProgram({"--library", lib, "load", project});
    EXPECT_EQ(load.status, 1);
    EXPECT_EQ(load.out, "\tGOOD\t03000A\n\tGOOD\t03000A\n");
    EXPECT_EQ(load.err, "zerbin: error: element 1 'GONE' of project '" + project +
                            "': no block type 'GONE' in library '" + lib + "'\n");
}

TEST(Scripting, OutputThatCannotBeWrittenIsAFailure) {
    const ProgramResult result = RunProgram({"save", "THERMOSTAT"}, {}, "C", "/dev/full");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "zerbin: error: cannot write the output: no space left on device\n");
}

TEST(Zerbin, MessagesOfTheBlocksGoToStderrAsTitleAndText) {
    TempFolder folder;
    folder.Write("lib/GAP/GAP.xml",
                 "<AppObject><ID>5</ID><InReferences><B><CDBORDERINPOSITION>2"
                 "</CDBORDERINPOSITION><SNVTCOMPATIBILITYLIST>105</SNVTCOMPATIBILITYLIST></B>"
                 "</InReferences></AppObject>");
    const ProgramResult result =
        RunProgram({"--library", (folder.Path() / "lib").string(), "image", "GAP"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "030005\n");
    EXPECT_EQ(result.err, "Zerbin: GAP: Missing CDBOrderinPosition in XML File: 1\n");
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
