// show, image, save, export and load on the shipped library: images checked against bytes
// worked out by hand from the dictionary's scaling, and projects that go out and come back.

#include "tests/support/ProgramRunner.h"

namespace zerbin::testing {
namespace {

struct ImageRow {
    std::vector<std::string> args;
    std::string image;
};

// What the command adds to the encoders: its flags and --set and --ref reach the block. The
// encoders' rules (short floats, units, byte orders) are tested at their own layers.
TEST(BlockCommands, ImagesOfTheShippedTypes) {
    const std::vector<ImageRow> rows{
        // 21, 24, 0.5 and 4 degrees at 0.01: 0834, 0960, 0032, 0190; mode AUTO 00.
        {{"image", "THERMOSTAT"}, "10012E00000000083409600032000190"},
        {{"image", "THERMOSTAT", "--set", "HeatSetpoint=20.5", "--set", "Mode=3"},
         "10012E00000000080209600032030190"},
        {{"image", "THERMOSTAT", "--intel"}, "102E0100000000340860093200009001"},
        // With short floats the bias takes two bytes (21.5 is 5560) and the CDB shrinks.
        {{"--short-float", "image", "PID_LOOP", "--set", "Bias=21.5"},
         "1A012D000000000000014020000004B0000055600000"
         "4E20000A"},
        // References go in as given (their Intel form is the input's own rule).
        {{"image", "TIME_DELAY", "--ref", "Trigger=234501", "--ref", "reset=4203"},
         "0E01322345014203003200000000"},
        // CO2 limit 1000 ppm is 03E8; minimum outside air 15 % at 0.005 % is 0BB8.
        {{"image", "ROOM_CONTROLLER"},
         "20013A00000000000000000834096000C801F400C8177003E828000005DC0BB8"},
        // A type with no CDB: a zero length and the ID.
        {{"image", "Q_EMPTY"}, "000139"},
    };
    for (const ImageRow& row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.args));
        const ProgramResult result = RunProgram(row.args);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.out, row.image + "\n");
        EXPECT_EQ(result.err, "");
    }
}

TEST(BlockCommands, SavedProjectLoadsBackToTheSameImage) {
    TempFolder folder;
    const std::vector<std::string> values{"--set", "HeatSetpoint=19.5", "--set", "Mode=1"};
    std::vector<std::string> save{"save", "THERMOSTAT", "--user-name", "Zone 1",
                                  "--x",  "120,5",      "--y",         "80"};
    save.insert(save.end(), values.begin(), values.end());
    const ProgramResult saved = RunProgram(save);
    ASSERT_EQ(saved.status, 0) << saved.err;
    EXPECT_EQ(saved.out,
              "<?xml version=\"1.0\"?>\n"
              "<Project>\n"
              "  <THERMOSTAT>\n"
              "    <UserName>Zone 1</UserName>\n"
              "    <X_Position>120.5</X_Position>\n"
              "    <Y_Position>80</Y_Position>\n"
              "    <CDB>10012E00000000079E09600032010190</CDB>\n"
              "    <Attributes>\n"
              "      <HeatSetpoint>19.5</HeatSetpoint>\n"
              "      <CoolSetpoint>24</CoolSetpoint>\n"
              "      <Hysteresis>0.5</Hysteresis>\n"
              "      <Mode>1</Mode>\n"
              "      <UnoccupiedOffset>4</UnoccupiedOffset>\n"
              "    </Attributes>\n"
              "  </THERMOSTAT>\n"
              "</Project>\n");

    const std::string project = folder.Write("project.xml", saved.out).string();
    const ProgramResult loaded = RunProgram({"load", project});
    EXPECT_EQ(loaded.status, 0);
    EXPECT_EQ(loaded.err, "");
    EXPECT_EQ(loaded.out, "Zone 1\tTHERMOSTAT\t10012E00000000079E09600032010190\n");

    std::vector<std::string> intel{"image", "THERMOSTAT", "--intel"};
    intel.insert(intel.end(), values.begin(), values.end());
    EXPECT_EQ(RunProgram({"load", project, "--intel"}).out,
              "Zone 1\tTHERMOSTAT\t" + RunProgram(intel).out);
}

// The lean form itself is the block's; here the options reach it and both forms agree.
TEST(BlockCommands, BothExportFormsWriteTheSameLeanSubtree) {
    const std::vector<std::string> block{"export", "ALARM_LIMITS", "--user-name", "Boiler",
                                         "--key",  "Plant\\B1",    "--set",       "HighLimit=90"};
    std::vector<std::string> sim = block;
    sim.push_back("--sim");
    std::vector<std::string> interop = block;
    interop.push_back("--interop");
    const ProgramResult simulator = RunProgram(sim);
    EXPECT_EQ(simulator.status, 0);
    EXPECT_EQ(simulator.err, "");
    for (const char* part :
         {"<ALARM_LIMITS>\n    <UserName>Boiler</UserName>\n    <Key>Plant\\B1</Key>",
          "<HighLimit>90</HighLimit>\n      <LowLimit>12</LowLimit>"}) {
        EXPECT_NE(simulator.out.find(part), std::string::npos) << part << "\n" << simulator.out;
    }
    EXPECT_EQ(simulator.out.find("<CDB>"), std::string::npos);
    EXPECT_EQ(RunProgram(interop).out, simulator.out);
}

// The header, the members in the order of the CDB and the outputs of a new block.
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
