#include "base/XmlPathIndex.h"

#include "base/Xml.h"
#include "tests/support/TestSupport.h"

namespace zerbin::xml {
namespace {

using testing::ParseXml;

// The "n" attribute of a found element, or "-" for no match.
std::string Tag(pugi::xml_node node) {
    return node ? node.attribute("n").value() : "-";
}

// Elements carry n='...' so that a row can name the one it expects.
constexpr const char* kTree =
    "<?AppObject pi?><!--<AppObject/>-->"
    "<R n='R'>"
    "  <A n='A1'><B n='A1/B'/></A>"
    "  <X n='X'><B n='X/B'/><!-- <C/> --></X>"
    "  <A n='A2'><C n='A2/C'><B n='A2/C/B'/></C></A>"
    "  <P n='P1'><Q n='P1/Q'><P n='P1/Q/P'><Q n='P1/Q/P/Q'/></P></Q></P>"
    "  <ns:A n='nsA'><ns:B n='nsA/nsB'/></ns:A>"
    "  <a n='lowA'><a n='a/a'><a n='a/a/a'/></a></a>"
    "</R>";

struct Row {
    const char* root;  // path of the root element; empty for the document
    const char* path;
    const char* expected;
};

// Each row is asked of the walk and of the index alike.
TEST(PathIndex, AnswersAsTheFirstMatchWalk) {
    const Row rows[] = {
        {"", "A/B", "A1/B"},
        {"", "A/C/B", "A2/C/B"},  // first A has no C: the second one answers
        {"", "R/B", "-"},         // no B is a child of R
        {"", "R/X/C", "-"},       // a comment is no element
        {"", "AppObject", "-"},   // nor is a processing instruction or a comment's text
        {"", "P/Q", "P1/Q"},      // the outer pair comes first in document order
        {"", "Q/P/Q", "P1/Q/P/Q"},
        {"", "A/ns:B", "-"},  // prefixes are part of the name
        {"", "a/a/a", "a/a/a"},
        {"", "A/b", "-"},  // case counts
        {"", "/B", "-"},
        {"", "", "-"},  // no path finds nothing, not the root
        {"", "A//B", "-"},
        {"R/A", "A/B", "-"},  // the root is not part of a match
        {"R", "A/C/B", "A2/C/B"},
        {"R", "R/A/B", "-"},  // nor is it above one
        {"", "R/A/B", "A1/B"},
        {"R/a", "a/a", "a/a/a"},
    };
    auto doc = ParseXml(kTree);
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.root) + " | " + row.path);
        const pugi::xml_node root = *row.root == '\0' ? *doc : FindFirst(*doc, row.root);
        ASSERT_TRUE(root);
        const PathIndex index(root);
        EXPECT_EQ(Tag(index.FindFirst(row.path)), row.expected);
        EXPECT_EQ(Tag(FindFirst(root, row.path)), row.expected);
    }
    EXPECT_EQ(Tag(FindFirst(pugi::xml_node(), "A")), "-");
    EXPECT_EQ(Tag(PathIndex(pugi::xml_node()).FindFirst("A")), "-");
}

TEST(IndexOf, ADocumentInTheMemoryOfAFreedOneIsIndexedAnew) {
    alignas(pugi::xml_document) std::byte place[sizeof(pugi::xml_document)];
    for (int round = 0; round < 3; ++round) {
        SCOPED_TRACE(round);
        // Shapes differ from round to round, so that a stale index would answer with some
        // other node.
        std::string text = "<A>";
        for (int filler = 0; filler < 3 - round; ++filler) {
            text += "<F n='filler'/>";
        }
        text += "<B n='" + std::to_string(round) + "'/></A>";
        // Each document in the same memory, so that it has the key of the one freed before.
        std::shared_ptr<pugi::xml_document> doc(new (place) pugi::xml_document,
                                                [](pugi::xml_document* d) { d->~xml_document(); });
        ASSERT_TRUE(doc->load_string(text.c_str()));

        EXPECT_EQ(Tag(FindFirstIndexed(*doc, "A/B")), std::to_string(round));
        EXPECT_EQ(Tag(IndexOf(doc)->FindFirst("A/B")), std::to_string(round));
        EXPECT_EQ(Tag(FindFirstIndexed(*doc, "A/B")), std::to_string(round));
    }
}

}  // namespace
}  // namespace zerbin::xml
