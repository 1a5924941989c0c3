#include "platform/Files.h"

#include "tests/support/TestSupport.h"

namespace zerbin {
namespace {

namespace fs = std::filesystem;

class FirstMatchTest : public ::testing::Test {
protected:
    void SetUp() override { fs::create_directories(dir_ / "Folder.pdf"); }
    void Touch(const std::string& name) { folder_.Write(name, "x"); }

    testing::TempFolder folder_;
    fs::path dir_ = folder_.Path();
};

TEST_F(FirstMatchTest, MatchesRegularFilesByWildcard) {
    Touch("Pump.xml");
    Touch("Pump_DS.pdf");
    Touch("readme.txt");
    const struct {
        const char* wildcard;
        const char* expected;  // nullptr: no match
    } rows[] = {
        {"*.xml", "Pump.xml"},         {"Pump_*.pdf", "Pump_DS.pdf"},
        {"????.xml", "Pump.xml"},      {"*.PDF", nullptr},
        {"Folder.pdf", nullptr},  // a folder is not a file
        {"[Rr]eadme.*", "readme.txt"}, {"Pump", nullptr},
    };
    const std::vector<std::string> listing = RegularFiles(dir_);
    for (const auto& row : rows) {
        const auto match = FirstMatch(dir_, row.wildcard);
        if (row.expected == nullptr) {
            EXPECT_FALSE(match.has_value()) << row.wildcard << " gave " << match.value_or("");
        } else {
            EXPECT_EQ(match.value_or("<none>"), row.expected) << row.wildcard;
        }
        // The folder listed once answers as the folder searched each time.
        EXPECT_EQ(FirstMatch(listing, row.wildcard), match) << row.wildcard;
    }
}

// The earlier wildcard wins whichever file the listing gives first: of the first two rows,
// one order disagrees with the listing.
TEST_F(FirstMatchTest, InOrderTakesTheFirstWildcardThatFindsAFile) {
    Touch("Pump.xml");
    Touch("Pump_DS.pdf");
    const struct {
        std::vector<std::string> wildcards;
        std::optional<std::string> expected;
    } rows[] = {
        {{"*.doc", "*.xml", "*.pdf"}, "Pump.xml"},
        {{"*.doc", "*.pdf", "*.xml"}, "Pump_DS.pdf"},
        {{"*.doc", "Folder.pdf", "*.pdf"}, "Pump_DS.pdf"},
        {{"*.doc", "Folder.pdf"}, std::nullopt},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(FirstMatchInOrder(dir_, row.wildcards), row.expected) << row.wildcards[0];
    }
}

// Composed as text for speed, the name must be the very text the path appends give.
TEST(DefinitionFile, AndTypeFolderAreTheTextsOfTheAppendedPaths) {
    for (const char* library : {"", "/", "lib", "lib/", "/opt/blocks", "./a//b/", ".."}) {
        for (const char* type : {"T", "ROOM_CONTROLLER", "..", "a b", "", "a/b", "/abs"}) {
            EXPECT_EQ(DefinitionFile(library, type).native(),
                      (fs::path(library) / type / (std::string(type) + ".xml")).native())
                << library << " | " << type;
            EXPECT_EQ(TypeFolder(library, type).native(), (fs::path(library) / type).native())
                << library << " | " << type;
        }
    }
}

TEST(ComponentFolder, HostOverrideDecidesTheLibraryFolder) {
    SetComponentFolder("/opt/host/blocks/Zerbin");
    EXPECT_EQ(ComponentFolder(), fs::path("/opt/host/blocks/Zerbin"));
    EXPECT_EQ(LibraryFolder(), fs::path("/opt/host/blocks"));
    SetComponentFolder("/opt/host/blocks/Zerbin/");
    EXPECT_EQ(LibraryFolder(), fs::path("/opt/host/blocks"));
    SetComponentFolder("/opt/host/x/../blocks/Zerbin");  // need not exist
    EXPECT_EQ(LibraryFolder(), fs::path("/opt/host/blocks"));
    SetComponentFolder({});
    EXPECT_FALSE(ComponentFolder().empty());
    EXPECT_TRUE(fs::is_directory(ComponentFolder()));
    EXPECT_EQ(LibraryFolder(), ComponentFolder().lexically_normal().parent_path());
}

TEST(IsSafeTypeName, KeepsTypeNamesInsideTheLibrary) {
    for (const char* good : {"Pump", "AHU.v2", "a b", "..x", "x..", "\xC3\xA4"}) {
        EXPECT_TRUE(IsSafeTypeName(good)) << good;
    }
    for (const char* bad : {"", ".", "..", "../x", "a/b", "a\\b", "/etc", "a\tb", "a\nb", "\x7F"}) {
        EXPECT_FALSE(IsSafeTypeName(bad)) << bad;
    }
    EXPECT_FALSE(IsSafeTypeName(std::string("a\0b", 3)));
    EXPECT_TRUE(IsSafeTypeName(std::string(255, 'x')));
    EXPECT_FALSE(IsSafeTypeName(std::string(256, 'x')));
}

}  // namespace
}  // namespace zerbin
