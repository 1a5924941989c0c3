// The shape of the command line, through the real program: every usage error ends with
// status 2 and exactly one line on stderr, and nothing on stdout.

#include "tests/support/ProgramRunner.h"

namespace zerbin::testing {
namespace {

struct UsageRow {
    std::vector<std::string> args;
    std::string error;
};

TEST(CommandLine, UsageErrorsExitTwoWithOneHintLine) {
    const std::vector<UsageRow> rows{
        {{}, "no command given (try 'zerbin --help')"},
        {{"frobnicate"}, "unknown command 'frobnicate' (try 'zerbin --help')"},
        {{"--colour", "types"}, "unknown option '--colour' (try 'zerbin --help')"},
        // Options of a command are not options of the program, and the other way round.
        {{"--intel", "image", "THERMOSTAT"}, "unknown option '--intel' (try 'zerbin --help')"},
        {{"image", "THERMOSTAT", "--library", "x"},
         "unknown option '--library' for 'image' (try 'zerbin image --help')"},
        {{"--library"}, "option '--library' expects an argument"},
        {{"image", "THERMOSTAT", "--intel=1"}, "option '--intel' takes no argument"},
        {{"show"}, "'show' expects a block type (try 'zerbin show --help')"},
        {{"image", "THERMOSTAT", "PID_LOOP"},
         "unexpected argument 'PID_LOOP' (try 'zerbin image --help')"},
        {{"types", "PID_LOOP"}, "unexpected argument 'PID_LOOP' (try 'zerbin types --help')"},
        {{"image", "THERMOSTAT", "--set", "Mode"}, "--set expects NAME=VALUE, found 'Mode'"},
        {{"image", "THERMOSTAT", "--ref", "SpaceTemp"},
         "--ref expects INPUT=HEX, found 'SpaceTemp'"},
        {{"image", "THERMOSTAT", "--ref", "SpaceTemp=42g3"},
         "--ref expects hexadecimal digits for 'SpaceTemp', found '42g3'"},
        {{"--units", "imperial", "types"}, "--units expects 'si' or 'us', found 'imperial'"},
        {{"image", "THERMOSTAT", "--export-index", "32768"},
         "--export-index expects a whole number from -32768 to 32767, found '32768'"},
        {{"save", "THERMOSTAT", "--x", "12 5"}, "--x expects a number, found '12 5'"},
        {{"export", "THERMOSTAT"}, "'export' needs --sim or --interop"},
        {{"export", "THERMOSTAT", "--sim", "--interop"}, "--sim and --interop exclude each other"},
        // What the block lacks is only known once it exists.
        {{"image", "THERMOSTAT", "--set", "Gain=2"}, "THERMOSTAT has no attribute Gain"},
        // The type selector's write would show a message for the unknown id; the bad name
        // behind it must stop the run before that write happens.
        {{"image", "TYPE_MUX", "--set", "DataType=999", "--set", "Nope=1"},
         "TYPE_MUX has no attribute Nope"},
        {{"image", "THERMOSTAT", "--ref", "Flow=4000"}, "THERMOSTAT has no input Flow"},
        {{"image", "NO_SUCH_TYPE"},
         "no block type 'NO_SUCH_TYPE' in library '" ZERBIN_SHIPPED_DATA "/library'"},
        {{"image", "../THERMOSTAT"}, "invalid block type name '../THERMOSTAT'"},
    };
    for (const UsageRow& row : rows) {
        const ProgramResult result = RunProgram(row.args);
        SCOPED_TRACE(::testing::PrintToString(row.args));
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, "zerbin: error: " + row.error + "\n");
        EXPECT_EQ(result.out, "");
    }
}

TEST(CommandLine, HelpAndVersionAnswerOnStdoutWithStatusZero) {
    const ProgramResult help = RunProgram({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.out.rfind("USAGE: zerbin [options] <command> [arguments]\n", 0), 0u);
    EXPECT_EQ(help.err, "");
    EXPECT_EQ(RunProgram({"-h"}).out, help.out);
    // Help wins over whatever else stands on the line.
    EXPECT_EQ(RunProgram({"--help", "frobnicate"}).status, 0);

    const std::vector<std::string> commands{"types",  "show", "image", "save",
                                            "export", "load", "check"};
    for (const std::string& command : commands) {
        const ProgramResult commandHelp = RunProgram({command, "--help"});
        EXPECT_EQ(commandHelp.status, 0) << command;
        EXPECT_EQ(commandHelp.out.rfind("USAGE: zerbin [options] " + command, 0), 0u) << command;
        EXPECT_NE(commandHelp.out, help.out) << command;
    }

    // The range the help gives is the one the command takes.
    EXPECT_NE(RunProgram({"image", "--help"}).out.find("export index (-32768 to 32767)"),
              std::string::npos);
    for (const char* index : {"-32768", "32767"}) {
        EXPECT_EQ(RunProgram({"image", "THERMOSTAT", "--export-index", index}).status, 0) << index;
    }

    const ProgramResult version = RunProgram({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.out, "zerbin " ZERBIN_VERSION_TEXT "\n");
}

}  // namespace
}  // namespace zerbin::testing
