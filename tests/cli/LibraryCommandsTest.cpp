// types and check on a library the test writes.

#include <gmock/gmock.h>

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

// The manifest's least dictionary version against the dictionary's own, checked before any
// type; then check --project lists the blocks whose type changed since they were saved.
TEST_F(FaultyLibrary, CheckRefusesANewerDictionaryNeedAndListsChangedBlocks) {
    const std::string shipped = ReadWhole(std::filesystem::path(ZERBIN_DATA_DIR) / "snvts.xml");
    const auto dictionary = [&](const std::string& version) {
        std::string text = shipped;
        text.replace(text.find("<SNVTS VERSION=\"1.0\">"), 20,
                     version.empty() ? "<SNVTS>" : "<SNVTS VERSION=\"" + version + "\">");
        return folder_.Write("d" + version + ".xml", text).string();
    };
    const std::string needs =
        "<LIBRARY><NAME>Plant</NAME><DICTIONARYVERSION>1.2</DICTIONARYVERSION>"
        "</LIBRARY>";
    const struct {
        const char* manifest;  // nullptr: none
        std::string dictionary;
        int status;
        std::string err;
    } rows[] = {
        {nullptr, dictionary(""), 0, ""},
        {needs.c_str(), dictionary("1.10"), 0, ""},
        {needs.c_str(), dictionary("1.1"), 1,
         "zerbin: error: library '" + library_ + "' (Plant) needs dictionary version 1.2 or " +
             "later; dictionary '" + folder_.Path().string() + "/d1.1.xml' is version '1.1'\n"},
        {needs.c_str(), dictionary(""), 1, "gives no version\n"},
        {"<LIBRARY>", dictionary("1.2"), 3, "cannot read library manifest"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.dictionary);
        std::filesystem::remove(folder_.Path() / "lib" / "library.xml");
        if (row.manifest != nullptr) {
            folder_.Write("lib/library.xml", row.manifest);
        }
        const ProgramResult result =
            RunProgram({"--library", library_, "--dictionary", row.dictionary, "check", "GOOD"});
        EXPECT_EQ(result.status, row.status);
        EXPECT_THAT(result.err, ::testing::HasSubstr(row.err));
    }

    std::filesystem::remove(folder_.Path() / "lib" / "library.xml");
    const std::string project = folder_
                                    .Write("p.xml", R"(<Project>
  <GOOD Key="Block1" TypeStamp="00000000"><Attributes><Mode>99</Mode></Attributes></GOOD>
  <GOOD Key="Block2"><Attributes><Mode>1</Mode></Attributes></GOOD>
  <GONE Key="Block3"/>
</Project>)")
                                    .string();
    const ProgramResult listed = RunProgram({"--library", library_, "check", "--project", project});
    EXPECT_EQ(listed.status, 1);
    EXPECT_THAT(listed.out,
                ::testing::MatchesRegex(
                    "Block1 \\(GOOD\\): type changed: saved as 00000000, now [0-9a-f]{8}\n"
                    "Block1 \\(GOOD\\): Mode '99' kept: .*\n"
                    "Block3 \\(GONE\\): type not in the library; the block is kept as "
                    "saved\n"));
    EXPECT_EQ(RunProgram({"--library", library_, "check", "--project", project, "GOOD"}).status, 2);
}

// show lists the members the layout placed by their place, then those it passed by.
TEST(ShowCommand, MembersWithoutAPlaceComeAfterThePlacedOnes) {
    TempFolder folder;
    folder.Write("lib/LOOSE/LOOSE.xml", R"(<AppObject>
  <NAME>Loose</NAME><ID>12</ID>
  <InReferences>
    <In><CDBORDERINPOSITION>0</CDBORDERINPOSITION><SNVTCOMPATIBILITYLIST>95</SNVTCOMPATIBILITYLIST></In>
  </InReferences>
  <Attributes>
    <Mode><CDBORDERINPOSITION>1</CDBORDERINPOSITION><SNVTTYPE>108</SNVTTYPE></Mode>
  </Attributes>
</AppObject>)");
    const ProgramResult shown =
        RunProgram({"--library", (folder.Path() / "lib").string(), "show", "LOOSE"});
    const std::size_t mode = shown.out.find("  attribute  Mode");
    const std::size_t in = shown.out.find("  input      In ");
    ASSERT_NE(mode, std::string::npos) << shown.out;
    ASSERT_NE(in, std::string::npos) << shown.out;
    EXPECT_LT(mode, in) << shown.out;
}

}  // namespace
}  // namespace zerbin::testing
