// Writing a document that every XML 1.0 parser reads back to the same text. pugixml writes
// the tree; what it would let an XML parser change on the way back (a carriage return in
// text, blanks at the ends of a text) is marked in a copy of the tree and written as
// character references by the writer.
#include <ostream>
#include <string>
#include <string_view>

#include "base/Xml.h"
#include "base/XmlChars.h"
#include "interfaces/Error.h"

namespace zerbin::xml {
namespace {

// A byte that UTF-8 never holds: checked text can't contain it, so after it the next byte is
// a character to write as a reference.
constexpr char kMark = '\xFF';

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// Whether an XML parser would change the text on the way back: a carriage return anywhere,
// or a blank at either end.
bool NeedsMarks(std::string_view text) {
    return !text.empty() && (IsBlank(text.front()) || IsBlank(text.back()) ||
                             text.find('\r') != std::string_view::npos);
}

std::string Marked(std::string_view text) {
    std::size_t first = 0;
    while (first < text.size() && IsBlank(text[first])) {
        ++first;
    }
    std::size_t last = text.size();
    while (last > first && IsBlank(text[last - 1])) {
        --last;
    }
    std::string out;
    out.reserve(text.size() + 8);
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i < first || i >= last || text[i] == '\r') {
            out += kMark;
        }
        out += text[i];
    }
    return out;
}

void RequireWritable(std::string_view text, pugi::xml_node where) {
    if (const auto fault = detail::FindTextFault(text)) {
        throw Error("the text of '" + std::string(where.name()) + "' holds " + fault->reason);
    }
}

// Passes pugixml's output on, turning each marked character into a character reference.
class ReferenceWriter : public pugi::xml_writer {
public:
    explicit ReferenceWriter(std::ostream& out) : out_(out) {}

    void write(const void* data, size_t size) override {
        const std::string_view chunk(static_cast<const char*>(data), size);
        std::size_t from = 0;
        for (std::size_t i = 0; i < chunk.size(); ++i) {
            if (marked_) {
                out_ << "&#" << static_cast<int>(static_cast<unsigned char>(chunk[i])) << ';';
                marked_ = false;
                from = i + 1;
            } else if (chunk[i] == kMark) {
                out_.write(chunk.data() + from, static_cast<std::streamsize>(i - from));
                marked_ = true;
            }
        }
        if (!marked_ && from < chunk.size()) {
            out_.write(chunk.data() + from, static_cast<std::streamsize>(chunk.size() - from));
        }
    }

private:
    std::ostream& out_;
    bool marked_ = false;
};

}  // namespace

void Save(const pugi::xml_document& document, std::ostream& out) {
    // Checked where it stands; copied to be marked only when a text needs it, which few
    // documents have: copying a project of thousands of blocks costs more than writing it.
    bool marks = false;
    bool declaredEncoding = false;
    for (pugi::xml_node node = document.first_child(); node;
         node = NextInDocumentOrder(node, document)) {
        if (node.type() == pugi::node_element) {
            if (!IsValidName(node.name())) {
                throw Error("'" + std::string(node.name()) + "' is not a valid XML name");
            }
            for (pugi::xml_attribute attribute = node.first_attribute(); attribute;
                 attribute = attribute.next_attribute()) {
                if (!IsValidName(attribute.name())) {
                    throw Error("'" + std::string(attribute.name()) + "' is not a valid XML name");
                }
                RequireWritable(attribute.value(), node);
            }
        } else if (node.type() == pugi::node_pcdata) {
            const std::string_view text = node.value();
            RequireWritable(text, node.parent());
            marks = marks || NeedsMarks(text);
        } else if (node.type() == pugi::node_declaration && node.attribute("encoding")) {
            declaredEncoding = std::string_view(node.attribute("encoding").value()) != "UTF-8";
        }
    }
    if (!marks && !declaredEncoding) {
        pugi::xml_writer_stream writer(out);
        document.save(writer, "  ", pugi::format_default, pugi::encoding_utf8);
        return;
    }
    ReferenceWriter writer(out);
    pugi::xml_document copy;
    copy.reset(document);
    for (pugi::xml_node node = copy.first_child(); node; node = NextInDocumentOrder(node, copy)) {
        if (node.type() == pugi::node_pcdata && NeedsMarks(node.value())) {
            node.set_value(Marked(node.value()).c_str());
        }
    }
    // The text goes out as UTF-8 whatever the document was read from.
    for (pugi::xml_node node : copy.children()) {
        if (node.type() == pugi::node_declaration && node.attribute("encoding")) {
            node.attribute("encoding").set_value("UTF-8");
        }
    }
    copy.save(writer, "  ", pugi::format_default, pugi::encoding_utf8);
}

}  // namespace zerbin::xml
