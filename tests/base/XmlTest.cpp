#include "base/Xml.h"

#include <sys/stat.h>

#include <cstring>

#include "base/Utf8.h"
#include "interfaces/Error.h"
#include "tests/support/TestSupport.h"

namespace zerbin::xml {
namespace {

using testing::ParseXml;

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
    auto doc = ParseXml("<A>\n  <!-- note -->\n  <B>1</B>\n</A>");
    const pugi::xml_node a = doc->child("A");
    EXPECT_EQ(NodeType(a.first_child()), kNodeComment);
    EXPECT_EQ(a.first_child().next_sibling(), a.child("B"));
    EXPECT_FALSE(a.child("B").next_sibling());
}

TEST(XmlLoad, ReadsSingleByteAndUtf16Files) {
    const testing::TempFolder folder;
    const auto& dir = folder.Path();
    const std::string expected = "\xE2\x82\xAC \xC3\xA4";  // "€ ä"
    const struct {
        const char* name;
        std::string bytes;
    } rows[] = {
        {"cp1252.xml", "<?xml version=\"1.0\" encoding=\"windows-1252\"?><A>\x80 \xE4</A>"},
        {"utf8bom.xml", "\xEF\xBB\xBF<A>" + expected + "</A>"},
        {"utf16le.xml", std::string("\xFF\xFE<\0A\0>\0\xAC\x20 \0\xE4\0<\0/\0A\0>\0", 22)},
    };
    for (const auto& row : rows) {
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

// Each row is a document that pugixml alone takes but XML 1.0 does not, or that must be
// decoded by its declaration; the reason must say what is wrong.
TEST(XmlLoad, TakesWellFormedXmlOneOnly) {
    const struct {
        std::string text;
        const char* reasonOrText;  // a part of the reason, or the text of A when it loads
        bool loads;
    } rows[] = {
        {"<A>caf\xE9</A>", "not UTF-8", false},
        {"<?xml version='1.0' encoding='ISO-8859-15'?><A>\xA4</A>", "\xE2\x82\xAC", true},
        {"<?xml version='1.0' encoding='us-ascii'?><A>\xE9</A>", "encoding 'us-ascii'", false},
        {"<?xml version='1.0' encoding='x-klingon'?><A/>", "'x-klingon'", false},
        {"<?xml version='1.0' encoding='8Z'?><A/>", "no encoding name", false},
        {"<?xml version='1.0' encoding='8z'?><A/>", "no encoding name", false},
        {"<?xml version='1.0' encoding='[z'?><A/>", "no encoding name", false},
        {"<A>a\x01</A>", "U+0001", false},
        {"<A>&#1;</A>", "U+0001", false},
        {"<A>a & b</A>", "'&' that starts no reference", false},
        {"<A>&fan;</A>", "undefined entity '&fan;'", false},
        {"<A x='&x;'/>", "undefined entity '&x;'", false},
        {"<!DOCTYPE A [<!ENTITY fan 'Fan'>]><A>&fan;</A>", "entity declarations", false},
        {"<!DOCTYPE A SYSTEM 'file:///etc/passwd'><A>&lt;&#x20AC;</A>", "<\xE2\x82\xAC", true},
        {"<A x='a<b'/>", "'<' is not allowed", false},
        {"<A>]]></A>", "']]>'", false},
        {"<A><!-- a -- b --></A>", "'--'", false},
        {"<A><\xC2\xB7"
         "B/></A>",
         "not a valid XML name", false},
        {"<A>\xC3\xA9<\xC2\xB7"
         "B/></A>",
         "not a valid XML name", false},  // after text that is not ASCII
        {"<A><B x='1' x='2'/></A>", "given twice", false},
        {"<A><B\n x = '1'/><C x='1' y='2' x=\"3\"/></A>", "given twice", false},
        {"<A><B \xC2\xB7x='1'/></A>", "not a valid XML name", false},
        {"<A x='1'>v<B y='2'/></A>", "v", true},
        {"<A><?\xC2\xB7"
         "x y?></A>",
         "not allowed as a processing instruction target", false},
        {"<A/><B/>", "second document element", false},
        {"<A/>text", "text outside", false},
        {"<A/><?xml version='1.0'?>", "declaration", false},
        // The same offences on the top nodes of a plain ASCII document.
        {"<A x='1' x='2'/>", "given twice", false},
        {"<?xml version='2.0'?><A/>", "no version 1.x", false},
        {"<?xml version='1.'?><A/>", "no version 1.x", false},
        {"<?xml version='1.x'?><A/>", "no version 1.x", false},
        {"<?xml version='1.90'?><A>v</A>", "v", true},
        {"<A>\xED\x9F\xBF&#xD7FF;&#xE000;</A>", "\xED\x9F\xBF\xED\x9F\xBF\xEE\x80\x80", true},
        {"<A>&#xD800;</A>", "U+D800", false},
        {"<A>&#000000065;&#x0000000042;</A>", "AB", true},
        {"<A>&#1114112;</A>", "", false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        ParseError error;
        const auto doc = LoadString(row.text, &error);
        ASSERT_EQ(doc != nullptr, row.loads) << error.reason;
        if (row.loads) {
            EXPECT_EQ(FirstChildText(doc->child("A")), row.reasonOrText);
        } else {
            EXPECT_NE(error.reason.find(row.reasonOrText), std::string::npos) << error.reason;
        }
    }
}

// Text and tags are scanned many bytes at a time: an offender is found, at its own offset,
// wherever it falls in a run of an element's text, an indent, a start or end tag's name, or
// a tag after its name.
TEST(XmlLoad, FindsAnOffenderAtEachPlaceOfARun) {
    const struct {
        const char* before;
        const char* filler;  // repeated to make the run
        const char* after;
        bool text;  // the run is an element's text
    } runs[] = {
        {"<R><T>", "x y\tz", "</T></R>", true}, {"<R>\n", " ", "<T/></R>", false},
        {"<R><", "aB_9.-:", "/></R>", false},   {"<R><T></", "aB_9.-:", "></R>", false},
        {"<R><T ", " \t\n", "/></R>", false},
    };
    const struct {
        std::string offender;
        const char* reason;
        bool inTextOnly;
    } offenders[] = {
        {"\x01", "U+0001", false},          {"\x1F", "U+001F", false},
        {"\xFF", "not UTF-8", false},       {"\xEF\xBF\xBE", "U+FFFE", false},
        {"&", "starts no reference", true}, {"]]>", "']]>'", true},
    };
    for (const auto& run : runs) {
        std::string filler;
        while (filler.size() < 24) {
            filler += run.filler;
        }
        for (const auto& offender : offenders) {
            for (std::size_t at = 0; at < 20 && (run.text || !offender.inTextOnly); ++at) {
                std::string text = run.before + filler + run.after;
                const std::size_t offset = std::strlen(run.before) + at;
                text.insert(offset, offender.offender);
                SCOPED_TRACE(::testing::PrintToString(text));
                ParseError error;
                ASSERT_EQ(LoadString(text, &error), nullptr);
                EXPECT_NE(error.reason.find(offender.reason), std::string::npos) << error.reason;
                EXPECT_EQ(error.offset, static_cast<std::ptrdiff_t>(offset));
            }
        }
    }
}

// Refused before it is opened for reading: opening a FIFO waits for a writer for ever, and
// /dev/zero never ends.
TEST(XmlLoad, ReadsRegularFilesOnly) {
    const testing::TempFolder folder;
    const auto& dir = folder.Path();
    ASSERT_EQ(::mkfifo((dir / "fifo.xml").c_str(), 0600), 0);
    std::filesystem::create_symlink("/dev/zero", dir / "zero.xml");
    std::filesystem::create_directory(dir / "folder.xml");
    folder.Write("big.xml", "<A>" + std::string(100, 'x') + "</A>");
    const struct {
        std::filesystem::path file;
        const char* reason;
    } rows[] = {
        {dir / "fifo.xml", "is a named pipe"},  {dir / "zero.xml", "is a device"},
        {dir / "folder.xml", "is a directory"}, {dir / "missing.xml", "no such file or directory"},
        {dir / "big.xml", "file too large"},
    };
    for (const auto& row : rows) {
        ParseError error;
        EXPECT_EQ(LoadFile(row.file, &error, 64), nullptr) << row.file;
        EXPECT_EQ(error.reason, row.reason) << row.file;
        EXPECT_TRUE(error.unreadable) << row.file;
    }
}

TEST(XmlSave, TextComesBackExactlyThroughAnyParser) {
    const std::string texts[] = {"a\rb", "a\r\nb", "\tx ", "   ", " lead", "trail\n", "a  b", ""};
    pugi::xml_document doc;
    const pugi::xml_node root = AppendChildElement(doc, "R");
    for (const std::string& text : texts) {
        AppendText(AppendChildElement(root, "T"), text);
        SetAttribute(AppendChildElement(root, "E"), "v", text);
    }
    std::ostringstream out;
    Save(doc, out);
    EXPECT_EQ(out.str().find('\r'), std::string::npos) << out.str();
    ParseError error;
    const auto back = LoadString(out.str(), &error);
    ASSERT_NE(back, nullptr) << error.reason;
    pugi::xml_node t = back->child("R").child("T");
    pugi::xml_node e = back->child("R").child("E");
    for (const std::string& text : texts) {
        SCOPED_TRACE(::testing::PrintToString(text));
        EXPECT_EQ(std::string(t.text().get()), text);
        EXPECT_EQ(std::string(e.attribute("v").value()), text);
        t = t.next_sibling("T");
        e = e.next_sibling("E");
    }
}

TEST(XmlSave, RefusesWhatXmlOneCannotCarry) {
    pugi::xml_document doc;
    pugi::xml_node element = AppendChildElement(doc, "UserName");
    for (const char* text : {"a\x01", "\x1F", "caf\xE9", "\xEF\xBF\xBE"}) {
        EXPECT_THROW(AppendText(element, text), Error) << text;
        EXPECT_THROW(SetAttribute(element, "v", text), Error) << text;
    }
    EXPECT_FALSE(element.first_child());
    // Put there by a host past the port's checks: the whole save is refused.
    element.append_child(pugi::node_pcdata).set_value("a\x02");
    std::ostringstream out;
    EXPECT_THROW(Save(doc, out), Error);
    EXPECT_EQ(out.str(), "");
}

TEST(FirstChildText, FailsWhenTheNodeHoldsNoText) {
    auto doc = ParseXml("<r><t>12</t><e/><nested><x>1</x></nested><c><!--note--></c></r>");
    const pugi::xml_node r = doc->child("r");
    EXPECT_EQ(FirstChildText(r.child("t")), "12");
    EXPECT_EQ(FirstChildText(r.child("c")), "note");  // a comment has a value
    EXPECT_THROW(FirstChildText(r.child("e")), Error);
    EXPECT_THROW(FirstChildText(r.child("nested")), Error);
    EXPECT_THROW(FirstChildText(r.child("missing")), Error);
}

// Each end of each range of the production, and the code points just outside it: S may start
// a name, N may only follow its first character, X may do neither.
TEST(IsValidName, EveryRangeOfTheProductionEndsWhereItShould) {
    const struct {
        uint32_t codePoint;
        char kind;
    } rows[] = {
        {0x2C, 'X'},    {0x2D, 'N'},    {0x2E, 'N'},   {0x2F, 'X'},   {0x30, 'N'},   {0x39, 'N'},
        {0x3A, 'S'},    {0x3B, 'X'},    {0x40, 'X'},   {0x41, 'S'},   {0x5A, 'S'},   {0x5B, 'X'},
        {0x5E, 'X'},    {0x5F, 'S'},    {0x60, 'X'},   {0x61, 'S'},   {0x7A, 'S'},   {0x7B, 'X'},
        {0xB6, 'X'},    {0xB7, 'N'},    {0xB8, 'X'},   {0xBF, 'X'},   {0xC0, 'S'},   {0xD6, 'S'},
        {0xD7, 'X'},    {0xD8, 'S'},    {0xF6, 'S'},   {0xF7, 'X'},   {0xF8, 'S'},   {0x2FF, 'S'},
        {0x300, 'N'},   {0x36F, 'N'},   {0x370, 'S'},  {0x37D, 'S'},  {0x37E, 'X'},  {0x37F, 'S'},
        {0x1FFF, 'S'},  {0x2000, 'X'},  {0x200B, 'X'}, {0x200C, 'S'}, {0x200D, 'S'}, {0x200E, 'X'},
        {0x203E, 'X'},  {0x203F, 'N'},  {0x2040, 'N'}, {0x2041, 'X'}, {0x206F, 'X'}, {0x2070, 'S'},
        {0x218F, 'S'},  {0x2190, 'X'},  {0x2BFF, 'X'}, {0x2C00, 'S'}, {0x2FEF, 'S'}, {0x2FF0, 'X'},
        {0x3000, 'X'},  {0x3001, 'S'},  {0xD7FF, 'S'}, {0xF8FF, 'X'}, {0xF900, 'S'}, {0xFDCF, 'S'},
        {0xFDD0, 'X'},  {0xFDEF, 'X'},  {0xFDF0, 'S'}, {0xFFFD, 'S'}, {0xFFFE, 'X'}, {0x10000, 'S'},
        {0xEFFFF, 'S'}, {0xF0000, 'X'},
    };
    for (const auto& row : rows) {
        std::string alone;
        AppendUtf8(alone, row.codePoint);
        EXPECT_EQ(IsValidName(alone), row.kind == 'S') << std::hex << row.codePoint;
        EXPECT_EQ(IsValidName("a" + alone), row.kind != 'X') << std::hex << row.codePoint;
    }
}

TEST(IsValidName, FollowsTheXmlNameProduction) {
    for (const char* good :
         {"a", "_x", "Name-1.2", "x:y", "\xC3\xA4rger", "\xE4\xB8\xAD", "\xE2\x80\x8D",
          "\xC3\xA4-1", "\xC3\xA4\xC2\xB7",  // after a first character that is not ASCII
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
