#include "datatypes/SnvtDictionary.h"

#include "base/Xml.h"
#include "tests/support/TestSupport.h"

namespace zerbin {
namespace {

using testing::ScopedDictionary;

// Entries in odd places: duplicates, an entry nested in another, entries outside SNVTS,
// comments, and a child that only a later duplicate has.
constexpr const char* kTricky = R"(<Root>
  <SNVT_1><NAME>not under SNVTS</NAME></SNVT_1>
  <Other><SNVTS>
    <!-- a comment -->
    <SNVT_105 FACTOR="1"><NAME>first</NAME></SNVT_105>
    <SNVT_2><NAME>two</NAME><Fields><a>105</a></Fields>
      <SNVTS><SNVT_105><Enums><OFF>0</OFF></Enums></SNVT_105></SNVTS>
    </SNVT_2>
    <SNVT_105><NAME>second</NAME><Enums><ON>1</ON></Enums></SNVT_105>
    <snvt_3><NAME>lower case</NAME></snvt_3>
    <SNVT_><NAME>empty id</NAME></SNVT_>
  </SNVTS></Other>
  <SNVTS><SNVT_1><NAME>late one</NAME></SNVT_1></SNVTS>
</Root>)";

std::string Path(const std::string& id) {
    return "SNVTS/SNVT_" + id;
}

TEST(SnvtDictionary, AnswersAsAFirstMatchSearchInDocumentOrder) {
    auto document = testing::ParseXml(kTricky);
    ScopedDictionary installed(document);
    const char* ids[] = {"1", "105", "2", "3", "", "4", "105/NAME", "2/SNVTS/SNVT_105"};
    const char* children[] = {"", "NAME", "Enums", "Fields", "name", "SNVTS", "Enums/ON"};
    for (const char* id : ids) {
        EXPECT_EQ(FindSnvtEntry(id), xml::FindFirst(*document, Path(id))) << "id " << id;
        for (const char* child : children) {
            EXPECT_EQ(FindSnvtChild(id, child), xml::FindFirst(*document, Path(id) + "/" + child))
                << "id " << id << " child " << child;
        }
    }
}

TEST(SnvtDictionary, FirstEntryWinsButAChildMayComeFromALaterOne) {
    ScopedDictionary installed(kTricky);
    EXPECT_EQ(xml::FirstChildText(FindSnvtEntry("105").child("NAME")), "first");
    EXPECT_EQ(xml::FirstChildText(FindSnvtChild("105", "NAME")), "first");
    // The nested entry inside SNVT_2 stands before the second top-level entry.
    EXPECT_EQ(FindSnvtChild("105", "Enums").first_child().name(), std::string("OFF"));
    EXPECT_EQ(xml::FirstChildText(FindSnvtEntry("1").child("NAME")), "late one");
    EXPECT_FALSE(FindSnvtEntry("3")) << "element names are matched exactly";
    EXPECT_FALSE(FindSnvtChild("1", "Enums"));
}

TEST(SnvtDictionary, ANewlyInstalledDocumentIsUsedFromThenOn) {
    auto first = testing::ParseXml(testing::Snvts("<SNVT_7><NAME>old</NAME></SNVT_7>"));
    ScopedDictionary installed(first);
    EXPECT_EQ(xml::FirstChildText(FindSnvtChild("7", "NAME")), "old");

    SetSnvtDictionary(testing::ParseXml(
        testing::Snvts("<SNVT_8><NAME>eight</NAME></SNVT_8><SNVT_7><NAME>new</NAME></SNVT_7>")));
    EXPECT_EQ(xml::FirstChildText(FindSnvtChild("7", "NAME")), "new");
    EXPECT_TRUE(FindSnvtEntry("8"));

    SetSnvtDictionary(first);
    EXPECT_EQ(xml::FirstChildText(FindSnvtChild("7", "NAME")), "old");
    EXPECT_FALSE(FindSnvtEntry("8"));
}

TEST(SnvtDictionary, InvalidateRereadsAChangedDocument) {
    auto document = std::make_shared<pugi::xml_document>();
    document->append_child("SNVTS").append_child("SNVT_5");
    ScopedDictionary installed(document);
    ASSERT_TRUE(FindSnvtEntry("5"));
    document->child("SNVTS").append_child("SNVT_6");
    InvalidateSnvtIndex();
    EXPECT_TRUE(FindSnvtEntry("6"));
}

// Caches of resolved types are keyed by the generation: no dictionary, the first one, each
// one installed after it and the same one read again must each have a key of their own.
TEST(SnvtDictionary, EachIndexedDocumentHasAGenerationOfItsOwnAndNoneHasZero) {
    SetSnvtDictionary(nullptr);
    EXPECT_EQ(SnvtIndexGeneration(), 0U);
    auto first = testing::ParseXml(testing::Snvts("<SNVT_7/>"));
    SetSnvtDictionary(first);
    const uint64_t one = SnvtIndexGeneration();
    EXPECT_NE(one, 0U);
    EXPECT_EQ(SnvtIndexGeneration(), one) << "asked again, the index is not built again";
    SetSnvtDictionary(testing::ParseXml(testing::Snvts("<SNVT_8/>")));
    const uint64_t two = SnvtIndexGeneration();
    EXPECT_NE(two, one);
    EXPECT_NE(two, 0U);
    InvalidateSnvtIndex();
    EXPECT_NE(SnvtIndexGeneration(), two);
    SetSnvtDictionary(nullptr);
    EXPECT_EQ(SnvtIndexGeneration(), 0U);
}

}  // namespace
}  // namespace zerbin
