// A library's manifest read and refused, and versions compared number by number.
#include <gmock/gmock.h>

#include "platform/LibraryManifest.h"
#include "tests/support/TestSupport.h"

namespace zerbin {
namespace {

TEST(LibraryManifest, VersionsCompareNumberByNumber) {
    const struct {
        const char* a;
        const char* b;
        int order;
    } rows[] = {
        {"1.2", "1.2.0", 0}, {"1.10", "1.9", 1}, {"1.9", "1.10", -1},
        {"2", "1.99", 1},    {"0.9", "1", -1},   {"1.02", "1.2", 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.a) + " " + row.b);
        const int order = CompareVersions(row.a, row.b);
        EXPECT_EQ((order > 0) - (order < 0), row.order);
    }
    for (const char* version : {"1", "1.2", "10.0.3"}) {
        EXPECT_TRUE(IsVersion(version)) << version;
    }
    for (const char* version : {"", "1.", ".1", "1..2", "v1", "1.2a", "1,2"}) {
        EXPECT_FALSE(IsVersion(version)) << version;
    }
}

TEST(LibraryManifest, ReadFromTheLibrarysRootOrRefused) {
    const struct {
        const char* text;  // nullptr: no manifest
        const char* version;
        const char* dictionaryVersion;
        const char* refused;  // a part of the reason; nullptr when read
    } rows[] = {
        {nullptr, nullptr, nullptr, nullptr},
        {"<library><Name>N</Name><version>2.1</version><DICTIONARYVERSION>1.3</DICTIONARYVERSION>"
         "</library>",
         "2.1", "1.3", nullptr},
        {"<LIBRARY/>", "", "", nullptr},
        {"<LIBRARY><VERSION>two</VERSION></LIBRARY>", nullptr, nullptr,
         "VERSION 'two' is no version"},
        {"<BLOCKS/>", nullptr, nullptr, "has the root 'BLOCKS', expected 'LIBRARY'"},
        {"<LIBRARY>", nullptr, nullptr, "cannot read library manifest"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text ? row.text : "(none)");
        testing::TempFolder folder;
        if (row.text != nullptr) {
            folder.Write(kLibraryManifestFile, row.text);
        }
        if (row.refused != nullptr) {
            try {
                ReadLibraryManifest(folder.Path());
                ADD_FAILURE() << "read";
            } catch (const LibraryManifestError& error) {
                EXPECT_THAT(error.what(), ::testing::HasSubstr(row.refused));
            }
            EXPECT_EQ(LibraryVersion(folder.Path()), "");
            continue;
        }
        const std::optional<LibraryManifest> manifest = ReadLibraryManifest(folder.Path());
        ASSERT_EQ(manifest.has_value(), row.version != nullptr);
        if (manifest) {
            EXPECT_EQ(manifest->version, row.version);
            EXPECT_EQ(manifest->dictionaryVersion, row.dictionaryVersion);
            EXPECT_EQ(LibraryVersion(folder.Path()), row.version);
        }
    }
}

}  // namespace
}  // namespace zerbin
