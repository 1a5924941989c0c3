// A document read one element under its document element at a time: the whole tree of a large
// project never exists, only the file's text and the nodes of a run of elements of some tens of
// kilobytes, the one in hand among them. The whole text is read and judged before the first
// element is given, as strictly as LoadFile judges it, so a document LoadFile refuses gives no
// element here and fails with the same reason.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include <pugixml.hpp>

#include "base/CheckedFile.h"
#include "base/Xml.h"

namespace zerbin::xml {

namespace detail {
// Where an element under the document element starts and ends, in bytes of the text.
struct ElementSpan {
    std::size_t begin;
    std::size_t end;
};
}  // namespace detail

class ElementStream {
public:
    // Reads and judges the file as LoadFile does; nullopt when LoadFile would fail, with
    // *error filled the same way when given. Throws std::bad_alloc when memory runs out.
    static std::optional<ElementStream> OpenFile(const std::filesystem::path& file,
                                                 ParseError* error,
                                                 std::uintmax_t maxBytes = kMaxDocumentBytes);
    // The same for a document held in memory, as LoadString reads it.
    static std::optional<ElementStream> OpenString(std::string_view text, ParseError* error);

    ElementStream(ElementStream&&) noexcept;
    ElementStream& operator=(ElementStream&&) noexcept;
    ~ElementStream();

    // The next element under the document element, in document order, with its subtree as
    // the whole document's tree holds it; an empty node after the last. The node and its
    // subtree may go at the next call: copy what must outlive it. Throws std::bad_alloc, and
    // Error if a run that the scan proved fails to parse, which only a fault here can cause.
    pugi::xml_node Next();

    // Whether the elements are parsed one at a time. A document whose text shows what the
    // one-pass proof does not take (a document type, a processing instruction, a name beyond
    // ASCII) is parsed whole instead, as LoadFile parses it.
    bool OneAtATime() const { return !whole_; }

private:
    ElementStream() = default;
    static std::optional<ElementStream> Open(FileBytes raw, ParseError* error,
                                             const std::function<FileBytes()>& original);

    // Gives the pages of the text before offset back to the system; nothing before it is read
    // again.
    void ReleaseTextBefore(std::size_t offset);

    std::optional<FileBytes> text_;
    std::size_t released_ = 0;  // bytes of the text whose pages went back
    std::vector<detail::ElementSpan> spans_;
    std::size_t nextSpan_ = 0;
    std::unique_ptr<pugi::xml_document> element_;  // the run of elements in hand
    pugi::xml_node current_;
    std::shared_ptr<pugi::xml_document> whole_;
    pugi::xml_node wholeNext_;
};

}  // namespace zerbin::xml
