// types and check on a library the test writes.

#include "tests/support/ProgramRunner.h"

namespace zerbin::testing {
namespace {

// A library with one sound type, one whose ordering numbers have a gap, and one whose
// definition is not well-formed.
class FaultyLibrary : public ::testing::Test {
protected:
    void SetUp() override {
        folder_.Write("lib/GOOD/GOOD.xml", R"(<AppObject>
  <NAME>Good</NAME><ID>10</ID>
  <Attributes>
    <Mode><CDBORDERINPOSITION>1</CDBORDERINPOSITION><SNVTTYPE>108</SNVTTYPE>
      <DefaultValue>3</DefaultValue></Mode>
  </Attributes>
</AppObject>)");
        folder_.Write("lib/GAP/GAP.xml", R"(<AppObject>
  <NAME>Gap</NAME><ID>11</ID>
  <InReferences>
    <In><CDBORDERINPOSITION>1</CDBORDERINPOSITION><SNVTCOMPATIBILITYLIST>95</SNVTCOMPATIBILITYLIST></In>
  </InReferences>
  <Attributes>
    <Mode><CDBORDERINPOSITION>3</CDBORDERINPOSITION><SNVTTYPE>108</SNVTTYPE></Mode>
  </Attributes>
</AppObject>)");
        folder_.Write("lib/BAD/BAD.xml", "<AppObject><NAME>Bad</AppObject>");
        library_ = (folder_.Path() / "lib").string();
    }

    TempFolder folder_;
    std::string library_;
};

TEST_F(FaultyLibrary, CheckAndTypesReportEachTypesMessages) {
    const std::string notAvailable =
        "Zerbin: Error: The object BAD is not available; Please verify its name.\n";
    const std::string gap =
        "Zerbin: GAP: Missing CDBOrderinPosition in XML File: 2\n"
        "zerbin: note: block type 'GAP' showed 1 message\n";
    struct Row {
        std::vector<std::string> args;
        int status;
        std::string out;
        std::string err;
    };
    const std::vector<Row> rows{
        // Types in folder order; a definition that can't be loaded is tried at the header and
        // at each of the three sections.
        {{"check"},
         1,
         "",
         notAvailable + notAvailable + notAvailable + notAvailable +
             "zerbin: note: block type 'BAD' showed 4 messages\n" + gap},
        // Named types are looked at alone.
        {{"check", "GOOD"}, 0, "", ""},
        {{"check", "GOOD", "GAP"}, 1, "", gap},
        {{"types"}, 0, "BAD\t\t\t\nGAP\t11\tGap\t\nGOOD\t10\tGood\t\n", notAvailable},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.args));
        std::vector<std::string> args{"--library", library_};
        args.insert(args.end(), row.args.begin(), row.args.end());
        const ProgramResult result = RunProgram(args);
        EXPECT_EQ(result.status, row.status);
        EXPECT_EQ(result.out, row.out);
        EXPECT_EQ(result.err, row.err);
    }
}

}  // namespace
}  // namespace zerbin::testing
