#include "base/XmlElementStream.h"

#include <cstring>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/TestSupport.h"

namespace zerbin::xml {
namespace {

// Each element as pugixml prints it, raw: what a reader of the element can see.
std::vector<std::string> PrintedElements(const std::shared_ptr<pugi::xml_document>& whole) {
    std::vector<std::string> printed;
    for (pugi::xml_node element : whole->document_element().children()) {
        if (element.type() == pugi::node_element) {
            std::ostringstream out;
            element.print(out, "", pugi::format_raw);
            printed.push_back(out.str());
        }
    }
    return printed;
}

std::vector<std::string> PrintedElements(ElementStream& stream) {
    std::vector<std::string> printed;
    while (const pugi::xml_node element = stream.Next()) {
        std::ostringstream out;
        element.print(out, "", pugi::format_raw);
        printed.push_back(out.str());
    }
    return printed;
}

// Where the stream and the whole reader must agree: the same refusal, at the same place, or
// the same elements.
void ExpectSameAnswer(const std::string& text) {
    ParseError wholeError;
    const auto whole = LoadString(text, &wholeError);
    ParseError streamError;
    std::optional<ElementStream> stream = ElementStream::OpenString(text, &streamError);
    ASSERT_EQ(stream.has_value(), whole != nullptr) << wholeError.reason;
    if (!whole) {
        EXPECT_EQ(streamError.reason, wholeError.reason);
        EXPECT_EQ(streamError.offset, wholeError.offset);
        EXPECT_EQ(streamError.srcText, wholeError.srcText);
    } else {
        EXPECT_EQ(PrintedElements(*stream), PrintedElements(whole));
    }
}

// The stream must answer as the whole-document reader does, element for element and reason
// for reason; the rows are the shapes the one-pass proof takes (streamed) and those next to
// them that it must leave to the whole reader, good or bad.
TEST(ElementStream, AnswersAsTheWholeDocumentReader) {
    // Elements are parsed some tens of kilobytes at a time: this one needs several runs.
    std::string many = "<P>";
    for (int i = 0; i < 6000; ++i) {
        many += "<B" + std::to_string(i % 7) + " n='" + std::to_string(i) + "'><V>" +
                std::to_string(i) + "</V></B" + std::to_string(i % 7) + ">" +
                (i % 100 == 0 ? "text<!-- c -->\n  " : "\n  ");
    }
    many += "</P>";
    const struct {
        std::string text;
        bool streamed;  // when the document loads
    } rows[] = {
        {"<?xml version=\"1.0\" encoding='UTF-8' standalone=\"yes\"?>\n<P>\n  <A>1</A>\n  "
         "<B/>\n</P>\n",
         true},
        {"<!-- c --><P><!-- c --><A x='1' y=\"2\"\tz = '&lt;&#65;&#x42;>\"'>t&amp;&gt;&apos;&quot;"
         "<B><C/></B></A>tail<A/><![CDATA[<x>]]]><D>\xC3\xA4\xE2\x82\xAC\r\n</D></P><!-- -->",
         true},
        {"<P/>", true},
        {many, true},
        {"<P>\n  <A ></A >\n  <a:b.c-d_9 a:x='v'/>\n</P>", true},
        {"<P><A><A><A/></A></A><B>]]</B><C>]>]]</C><D x=']]>'/></P>", true},
        {"<P>\xED\x9F\xBF&#xD7FF;&#xE000;&#1114111;</P>", true},
        {"<?xml version='1.0'?><P><A>&#00000065;</A></P>", true},
        {"<?xml version='1.0' encoding='ISO-8859-15'?><P><A>\xA4</A></P>", true},
        // Good, but the whole reader's to judge.
        {"<?xml version='1.0'?><?pi x?><P><A/></P>", false},
        {"<P><?pi x?><A/></P>", false},
        {"<!DOCTYPE P><P><A/></P>", false},
        {"<P><\xC3\xA4/></P>", false},
        {"<P><A a='1' b='1' c='1' d='1' e='1' f='1' g='1' h='1' i='1'/></P>", false},
        {"<P><A>&#x0000000042;</A></P>", false},
        {"<?xml  version = '1.0' ?><P/>", true},
        // Refused, each for its own reason.
        {"<P><A></B></P>", false},
        {"<P><A></A></P", false},
        {"<P><A></AB></P>", false},
        {"<P><AB></A></P>", false},
        {"<P><A x='1'y='2'/></P>", false},
        {"<P><A x='1' x='2'/></P>", false},
        {"<P><A x=1/></P>", false},
        {"<P><A x='<'/></P>", false},
        {"<P><A/ ></P>", false},
        {"<P>< A/></P>", false},
        {"<P><1A/></P>", false},
        {"<P><T><xT></P>", false},
        {"<P><A 1x='1'/></P>", false},
        {"<P><A>", false},
        {"<P><!-- a -- b --></P>", false},
        {"<P><!-- a ---></P>", false},
        {"<P><!-- a </P>", false},
        {"<P><![CDATA[ a </P>", false},
        {"<P><!ELEMENT></P>", false},
        {"<P>]]></P>", false},
        {"<P>a & b</P>", false},
        {"<P>&fan;</P>", false},
        {"<P>&#0;</P>", false},
        {"<P>&#xD800;</P>", false},
        {"<P>&#x;</P>", false},
        {"<P>&#x100000041;</P>", false},
        {"<P>\x01</P>", false},
        {"<P>\xFF</P>", false},
        {"<P/><Q/>", false},
        {"<P/>text", false},
        {"text<P/>", false},
        {"<P/><?xml version='1.0'?>", false},
        {" <?xml version='1.0'?><P/>", false},
        {"<?xml version='2.0'?><P/>", false},
        {"<?xml encoding='UTF-8'?><P/>", false},
        {"<?xml version='1.0' version='1.0'?><P/>", false},
        {"<?xml version='1.0'encoding='UTF-8'?><P/>", false},
        {"", false},
        {"<!-- only -->", false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.text.substr(0, 200)));
        ExpectSameAnswer(row.text);
        std::optional<ElementStream> stream = ElementStream::OpenString(row.text, nullptr);
        if (stream) {
            EXPECT_EQ(stream->OneAtATime(), row.streamed);
            while (stream->Next()) {
            }
            EXPECT_FALSE(stream->Next());  // and stays at the end
        }
    }
}

// The scan takes runs of text, names and values sixteen bytes at a time: a byte that stops a
// run must stop it wherever it falls in the run.
TEST(ElementStream, AnswersAsTheWholeDocumentReaderAtEachPlaceOfARun) {
    const struct {
        const char* before;
        const char* filler;  // repeated to make the run
        const char* after;
    } runs[] = {
        {"<P><T>", "x y", "</T></P>"},       {"<P>\n", " ", "<T/></P>"},
        {"<P><", "aB_9.-:", "/></P>"},       {"<P><T a='", "x y", "'/></P>"},
        {"<P><T ", "aB_9.-:", "='1'/></P>"},
    };
    const std::string offenders[] = {
        "\x01", "\x1F", "\xFF", "\xEF\xBF\xBE", "\xC3\xA4", "&", "]]>", "<", "\t", ">", ";", "/"};
    for (const auto& run : runs) {
        std::string filler;
        while (filler.size() < 40) {
            filler += run.filler;
        }
        for (const std::string& offender : offenders) {
            for (std::size_t at = 0; at < 20; ++at) {
                std::string text = run.before + filler + run.after;
                text.insert(std::strlen(run.before) + at, offender);
                SCOPED_TRACE(::testing::PrintToString(text));
                ExpectSameAnswer(text);
            }
        }
    }
}

}  // namespace
}  // namespace zerbin::xml
