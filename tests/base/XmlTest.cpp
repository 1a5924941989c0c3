#include "base/Xml.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "interfaces/Error.h"
#include "tests/TestSupport.h"

namespace zerbin::xml {
namespace {

std::shared_ptr<pugi::xml_document> Load(std::string_view text) {
    ParseError error;
    auto doc = LoadString(text, &error);
    EXPECT_NE(doc, nullptr) << error.reason;
    return doc;
}

// ---- Loading -------------------------------------------------------------------------------

TEST(XmlLoad, ReportsTheOffendingLineAndItsPlace) {
    ParseError error;
    EXPECT_EQ(LoadString("<A>\n  <B>x</C>\n</A>", &error), nullptr);
    EXPECT_EQ(error.line, 2);
    EXPECT_EQ(error.srcText, "  <B>x</C>");
    EXPECT_NE(error.reason.find("line 2, column "), std::string::npos) << error.reason;
    EXPECT_NE(error.reason.find("mismatch"), std::string::npos) << error.reason;

    EXPECT_EQ(LoadString("", &error), nullptr);
    EXPECT_FALSE(error.reason.empty());
    EXPECT_EQ(LoadString("<A>", nullptr), nullptr);  // no report asked for
}

TEST(XmlLoad, KeepsCommentsAndDropsBlankText) {
    auto doc = Load("<A>\n  <!-- note -->\n  <B>1</B>\n</A>");
    const pugi::xml_node a = doc->child("A");
    EXPECT_EQ(NodeType(a.first_child()), kNodeComment);
    EXPECT_EQ(a.first_child().next_sibling(), a.child("B"));
    EXPECT_FALSE(a.child("B").next_sibling());
}

TEST(XmlLoad, ReadsSingleByteAndUtf16Files) {
    const testing::TempFolder folder;
    const auto& dir = folder.Path();
    const std::string expected = "\xE2\x82\xAC \xC3\xA4";  // "€ ä"
    struct Row {
        const char* name;
        std::string bytes;
    };
    const Row rows[] = {
        {"cp1252.xml", "<?xml version=\"1.0\" encoding=\"windows-1252\"?><A>\x80 \xE4</A>"},
        {"utf8bom.xml", "\xEF\xBB\xBF<A>" + expected + "</A>"},
        {"utf16le.xml", std::string("\xFF\xFE<\0A\0>\0\xAC\x20 \0\xE4\0<\0/\0A\0>\0", 22)},
    };
    for (const Row& row : rows) {
        std::ofstream(dir / row.name, std::ios::binary) << row.bytes;
        ParseError error;
        auto doc = LoadFile(dir / row.name, &error);
        ASSERT_NE(doc, nullptr) << row.name << ": " << error.reason;
        EXPECT_EQ(FirstChildText(doc->child("A")), expected) << row.name;
    }
    ParseError error;
    EXPECT_EQ(LoadFile(dir / "missing.xml", &error), nullptr);
    EXPECT_FALSE(error.reason.empty());
}

// ---- Node kinds, names, text ---------------------------------------------------------------

TEST(FirstChildText, FailsWhenTheNodeHoldsNoText) {
    auto doc = Load("<r><t>12</t><e/><nested><x>1</x></nested><c><!--note--></c></r>");
    const pugi::xml_node r = doc->child("r");
    EXPECT_EQ(FirstChildText(r.child("t")), "12");
    EXPECT_EQ(FirstChildText(r.child("c")), "note");  // a comment has a value
    EXPECT_THROW(FirstChildText(r.child("e")), Error);
    EXPECT_THROW(FirstChildText(r.child("nested")), Error);
    EXPECT_THROW(FirstChildText(r.child("missing")), Error);
}

// ---- Names and creation ------------------------------------------------------------------

TEST(IsValidName, FollowsTheXmlNameProduction) {
    for (const char* good : {"a", "_x", "Name-1.2", "x:y", "\xC3\xA4rger", "\xE4\xB8\xAD",
                             "a\xC2\xB7"
                             "b"}) {
        EXPECT_TRUE(IsValidName(good)) << good;
    }
    for (const char* bad : {"", "1a", "-a", ".a", "a b", "a<b", "a&b", "a/b",
                            "\xC2\xB7"
                            "a",
                            "\xC3", "\xC0\x80", "\xFF", "a\xED\xA0\x80"}) {
        EXPECT_FALSE(IsValidName(bad)) << bad;
    }
    EXPECT_FALSE(IsValidName(std::string_view("a\0b", 3)));
}

TEST(AppendChildElement, ChecksBeforeTouchingTheTree) {
    pugi::xml_document doc;
    const pugi::xml_node root = AppendChildElement(doc, "Root");
    EXPECT_THROW(AppendChildElement(doc, "Second"), Error);  // one document element only
    EXPECT_THROW(AppendChildElement(root, "a b"), Error);
    pugi::xml_node child = AppendChildElement(root, "Child");
    AppendText(child, "");
    EXPECT_THROW(AppendChildElement(child.first_child(), "X"), Error);  // text holds nothing
    EXPECT_THROW(AppendText(doc, "x"), Error);
    SetAttribute(child, "k", "1");
    SetAttribute(child, "k", "2");
    EXPECT_STREQ(child.attribute("k").value(), "2");
    EXPECT_EQ(std::distance(child.attributes_begin(), child.attributes_end()), 1);
    EXPECT_THROW(SetAttribute(child, "1k", "v"), Error);
    EXPECT_THROW(SetAttribute(child.first_child(), "k", "v"), Error);
    EXPECT_EQ(std::distance(root.begin(), root.end()), 1);
}

}  // namespace
}  // namespace zerbin::xml
