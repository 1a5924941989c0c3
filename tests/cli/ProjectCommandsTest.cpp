// set, flat, diff, merge, import, reset and copy on small projects in the studio's format:
// each row a project, the arguments, what the command prints and its exit status, and the
// project afterwards as flat shows it.

#include "tests/support/ProgramRunner.h"

namespace zerbin::testing {
namespace {

// Two wired blocks as the studio saves them; the image of Zone holds the wire's reference.
const std::string kProject = R"(<?xml version="1.0"?>
<Project UnitSystem="SI" ShortFloat="0">
  <THERMOSTAT Key="Block1" ExportIndex="0">
    <UserName>Zone</UserName>
    <X_Position>120</X_Position>
    <Y_Position>80</Y_Position>
    <CDB>10012E42000000083409600032000190</CDB>
    <Attributes>
      <HeatSetpoint>21</HeatSetpoint>
      <CoolSetpoint>24</CoolSetpoint>
      <Hysteresis>0.5</Hysteresis>
      <Mode>0</Mode>
      <UnoccupiedOffset>4</UnoccupiedOffset>
    </Attributes>
    <Connection Input="SpaceTemp" Source="Block2" Output="Alarm" />
  </THERMOSTAT>
  <ALARM_LIMITS Key="Block2" ExportIndex="1">
    <UserName>Limits</UserName>
    <X_Position>10</X_Position>
    <Y_Position>20</Y_Position>
    <CDB />
    <Attributes>
      <HighLimit>30</HighLimit>
      <LowLimit>12</LowLimit>
    </Attributes>
  </ALARM_LIMITS>
</Project>
)";

std::string Flat(const std::string& project) {
    return RunProgram({"flat", project}).out;
}

struct Row {
    std::vector<std::string> args;  // "P" stands for the project file
    int status;
    std::string out;
    std::string err;        // a part of stderr
    std::string flatAfter;  // a line the project's flat holds afterwards; empty: unchanged
};

TEST(ProjectCommands, EachCommandOnTheStudiosProject) {
    const std::vector<Row> rows{
        {{"set", "P", "Zone", "HeatSetpoint=20.5", "Mode=HVAC_HEAT"}, 0, "", "", "Block1\tMode\t1"},
        {{"set", "P", "#2", "HighLimit=35"}, 0, "", "", "Block2\tHighLimit\t35"},
        // A refused value: its reason, and the file as it was.
        {{"set", "P", "Block1", "HeatSetpoint=20", "Mode=NOPE"}, 1, "", "Block1' Mode=NOPE: ", ""},
        {{"set", "P", "Nobody", "Mode=1"}, 2, "", "no block 'Nobody' in project", ""},
        {{"set", "P", "Zone", "Nothing=1"}, 2, "", "has no parameter Nothing", ""},
        {{"reset", "P", "Limits"}, 0, "", "", "Block2\tHighLimit\t"},
        {{"copy", "P", "Zone", "Limits"}, 0, "Block2\tHeatSetpoint\tno such parameter\n", "", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.args));
        TempFolder folder;
        const std::string project = folder.Write("p.xml", kProject).string();
        std::vector<std::string> args = row.args;
        std::replace(args.begin(), args.end(), std::string("P"), project);
        const std::string before = Flat(project);
        const ProgramResult result = RunProgram(args);
        EXPECT_EQ(result.status, row.status);
        if (row.args[0] != "copy") {
            EXPECT_EQ(result.out, row.out);
        } else {
            EXPECT_NE(result.out.find(row.out), std::string::npos) << result.out;
        }
        EXPECT_NE(result.err.find(row.err), std::string::npos) << result.err;
        if (row.flatAfter.empty() && row.status != 0) {
            EXPECT_EQ(ReadWhole(project), kProject);
        } else if (!row.flatAfter.empty()) {
            EXPECT_NE(Flat(project).find(row.flatAfter), std::string::npos) << Flat(project);
        }
    }
}

TEST(ProjectCommands, SetKeepsTheRestOfTheFileAndTheWiresInTheImage) {
    TempFolder folder;
    const std::string project = folder.Write("p.xml", kProject).string();
    ASSERT_EQ(RunProgram({"set", project, "Zone", "HeatSetpoint=20.5"}).status, 0);
    std::string expected = kProject;
    expected.replace(expected.find("<HeatSetpoint>21"), 16, "<HeatSetpoint>20.5");
    // 20.5 degrees is 0802; the wire's 42 stays in the image.
    expected.replace(expected.find("10012E42000000083409"), 20, "10012E42000000080209");
    EXPECT_EQ(ReadWhole(project), expected);
    EXPECT_EQ(ReadWhole(project + "~"), kProject);
}

TEST(ProjectCommands, FlatIsTheSameAfterASetAndASetBack) {
    TempFolder folder;
    const std::string project = folder.Write("p.xml", kProject).string();
    const std::string before = Flat(project);
    EXPECT_EQ(before.substr(0, 42), "Block1\t@type\tTHERMOSTAT\nBlock1\t@name\tZone\n");
    ASSERT_EQ(RunProgram({"set", project, "Zone", "Mode=HVAC_COOL", "CoolSetpoint=25"}).status, 0);
    EXPECT_NE(Flat(project), before);
    ASSERT_EQ(RunProgram({"set", project, "Zone", "Mode=0", "CoolSetpoint=24"}).status, 0);
    EXPECT_EQ(Flat(project), before);
    EXPECT_EQ(RunProgram({"diff", project, project + "~"}).status, 1);
}

struct MergeRow {
    std::string name;
    std::vector<std::string> ours;  // set arguments after the project, or {"delete", KEY}
    std::vector<std::string> theirs;
    int status;
    std::string err;
    std::vector<std::string> flatHolds;
};

std::string WithoutBlock(std::string text, const std::string& type) {
    const std::size_t from = text.find("  <" + type);
    const std::size_t to = text.find("</" + type + ">\n") + type.size() + 4;
    return text.erase(from, to - from);
}

TEST(ProjectCommands, MergeByBlockAndParameter) {
    const std::vector<MergeRow> rows{
        {"different parameters",
         {"Zone", "HeatSetpoint=19"},
         {"Zone", "Mode=1"},
         0,
         "",
         {"Block1\tHeatSetpoint\t19\n", "Block1\tMode\t1\n"}},
        {"one parameter two ways",
         {"Zone", "Hysteresis=1"},
         {"Zone", "Hysteresis=2", "CoolSetpoint=25"},
         1,
         "Block1 Hysteresis: ours 1, theirs 2\n",
         {"Block1\tHysteresis\t1\n", "Block1\tCoolSetpoint\t25\n"}},
        {"deleted in theirs, changed in ours",
         {"Limits", "HighLimit=35"},
         {"delete", "ALARM_LIMITS"},
         1,
         "Block2: deleted in theirs, changed in ours\n",
         {"Block2\tHighLimit\t35\n"}},
        {"deleted in theirs, unchanged in ours",
         {"Zone", "Mode=1"},
         {"delete", "ALARM_LIMITS"},
         0,
         "",
         {"Block1\tMode\t1\n"}},
    };
    for (const MergeRow& row : rows) {
        SCOPED_TRACE(row.name);
        TempFolder folder;
        const std::string base = folder.Write("base.xml", kProject).string();
        std::vector<std::string> sides;
        for (const auto& [name, change] :
             {std::pair{"ours.xml", row.ours}, {"theirs.xml", row.theirs}}) {
            const std::string file = folder.Write(name, kProject).string();
            if (change[0] == "delete") {
                folder.Write(name, WithoutBlock(kProject, change[1]));
            } else {
                std::vector<std::string> args{"set", file};
                args.insert(args.end(), change.begin(), change.end());
                ASSERT_EQ(RunProgram(args).status, 0);
            }
            sides.push_back(file);
        }
        const ProgramResult merged = RunProgram({"merge", base, sides[0], sides[1]});
        EXPECT_EQ(merged.status, row.status);
        EXPECT_EQ(merged.err, row.err);
        const std::string flat = Flat(sides[0]);
        for (const std::string& line : row.flatHolds) {
            EXPECT_NE(flat.find(line), std::string::npos) << line << flat;
        }
        EXPECT_EQ(flat.find("Block2\t@type") != std::string::npos,
                  row.name != "deleted in theirs, unchanged in ours");
    }
}

TEST(ProjectCommands, ImportCreatesUnderFreeKeysAndUpdatesOrKeepsByKey) {
    TempFolder folder;
    const std::string project = folder.Write("p.xml", kProject).string();
    std::string other = kProject;
    other.replace(other.find("<HighLimit>30"), 13, "<HighLimit>40");
    other.replace(other.find("THERMOSTAT Key=\"Block1\""), 23, "THERMOSTAT Key=\"Block2\"");
    const std::string from = folder.Write("from.xml", other).string();
    const ProgramResult kept = RunProgram({"import", project, from});
    EXPECT_EQ(kept.status, 0);
    // The thermostat's key is the alarm's here: it comes in as a new block, index and all.
    EXPECT_EQ(kept.out, "created\tBlock3\nkept\tBlock2\n");
    EXPECT_NE(Flat(project).find("Block3\t@export-index\t2\n"), std::string::npos);
    EXPECT_NE(Flat(project).find("Block2\tHighLimit\t30\n"), std::string::npos);
    const ProgramResult updated = RunProgram({"import", project, from, "--update"});
    EXPECT_EQ(updated.out, "created\tBlock4\nupdated\tBlock2\n");
    EXPECT_NE(Flat(project).find("Block2\tHighLimit\t40\n"), std::string::npos);
    EXPECT_EQ(RunProgram({"import", project, from, "--update", "--keep"}).status, 2);
}

// A block that comes in under a new key and index takes the wires that name it along: they
// name its new key, and the reference in the wired block's image is its output's under the
// new index (4002: the alarm's first output at index 2), not the block now under the old key.
TEST(ProjectCommands, WiresFollowABlockThatComesInUnderANewKey) {
    const std::string unwired = [] {
        std::string text = kProject;
        const std::size_t wire = text.find("    <Connection");
        return text.erase(wire, text.find('\n', wire) + 1 - wire);
    }();
    std::string theirs = kProject;
    theirs.replace(theirs.find("<HighLimit>30"), 13, "<HighLimit>40");
    std::string thermostatAtBlock2 = WithoutBlock(unwired, "ALARM_LIMITS");
    const std::string firstKey = "Key=\"Block1\" ExportIndex=\"0\"";
    thermostatAtBlock2.replace(thermostatAtBlock2.find(firstKey), firstKey.size(),
                               "Key=\"Block2\" ExportIndex=\"1\"");
    const struct {
        std::vector<std::string> args;  // files: base (merge only), the project written, from
        std::vector<std::string> texts;
    } rows[] = {
        {{"import", "P", "F"}, {thermostatAtBlock2, kProject}},
        // Both sides added a block as Block2; theirs is wired from theirs.
        {{"merge", "B", "P", "F"}, {WithoutBlock(unwired, "ALARM_LIMITS"), unwired, theirs}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.args[0]);
        TempFolder folder;
        std::vector<std::string> args{row.args[0]};
        for (std::size_t i = 1; i < row.args.size(); ++i) {
            args.push_back(folder.Write(row.args[i] + ".xml", row.texts[i - 1]).string());
        }
        const std::string project = folder.Path() / "P.xml";
        const ProgramResult result = RunProgram(args);
        ASSERT_EQ(result.status, 0) << result.err;
        EXPECT_NE(Flat(project).find("Block1\t@wire SpaceTemp\tBlock3/Alarm\n"), std::string::npos)
            << Flat(project);
        EXPECT_NE(Flat(project).find("Block3\t@export-index\t2\n"), std::string::npos);
        EXPECT_NE(ReadWhole(project).find("<CDB>10012E4002"), std::string::npos);
    }
}

// An export index that is no number is none: a block wired from such a block keeps the
// reference its image holds, as one wired from a block the host has not numbered yet.
TEST(ProjectCommands, AWireFromABlockWhoseIndexIsNoNumberKeepsItsReference) {
    std::string ours = kProject;
    ours.replace(ours.find("ExportIndex=\"1\""), 15, "ExportIndex=\"3x\"");
    std::string theirs = kProject;
    theirs.replace(theirs.find("Key=\"Block1\""), 12, "Key=\"Block9\"");
    TempFolder folder;
    const std::string project = folder.Write("p.xml", ours).string();
    const ProgramResult result =
        RunProgram({"import", project, folder.Write("f.xml", theirs).string()});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "created\tBlock9\nkept\tBlock2\n");
    const std::string written = ReadWhole(project);
    const std::string image = "<CDB>10012E42000000";
    EXPECT_NE(written.find(image, written.find(image) + 1), std::string::npos) << written;
}

TEST(ProjectCommands, DiffTellsWhatChangedAndExitsAsDiffDoes) {
    TempFolder folder;
    const std::string a = folder.Write("a.xml", kProject).string();
    std::string changed = WithoutBlock(kProject, "ALARM_LIMITS");
    changed.replace(changed.find("<X_Position>120"), 15, "<X_Position>130");
    changed.replace(changed.find("<Mode>0"), 7, "<Mode>2");
    const std::string b = folder.Write("b.xml", changed).string();
    EXPECT_EQ(RunProgram({"diff", a, a}).status, 0);
    const ProgramResult result = RunProgram({"diff", a, b});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out,
              "Block1: moved ('120', '80') → ('130', '80')\n"
              "Block1 Mode: '0' → '2'\n"
              "- Block2 (ALARM_LIMITS)\n");
    EXPECT_EQ(RunProgram({"diff", a, folder.Path() / "none.xml"}).status, 3);
    // The statuses the help gives are these.
    EXPECT_NE(RunProgram({"diff", "--help"})
                  .out.find("Exit status 0 when they are the same, 1 when they differ, 2 or 3"),
              std::string::npos);
}

}  // namespace
}  // namespace zerbin::testing
