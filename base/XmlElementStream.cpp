#include "base/XmlElementStream.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <new>
#include <string>
#include <utility>

#include "base/XmlDocumentText.h"
#include "interfaces/Error.h"

namespace zerbin::xml {

ElementStream::ElementStream(ElementStream&&) noexcept = default;
ElementStream& ElementStream::operator=(ElementStream&&) noexcept = default;
ElementStream::~ElementStream() = default;

std::optional<ElementStream> ElementStream::OpenFile(const std::filesystem::path& file,
                                                     ParseError* error, std::uintmax_t maxBytes) {
    std::optional<FileBytes> bytes = detail::ReadDocumentFileOrTell(file, maxBytes, error);
    if (!bytes) {
        return std::nullopt;
    }
    return Open(std::move(*bytes), error, [&] { return detail::ReadDocumentFile(file, maxBytes); });
}

std::optional<ElementStream> ElementStream::OpenString(std::string_view text, ParseError* error) {
    return Open(detail::CopyOf(text), error, [text] { return detail::CopyOf(text); });
}

std::optional<ElementStream> ElementStream::Open(FileBytes raw, ParseError* error,
                                                 const std::function<FileBytes()>& original) {
    std::optional<FileBytes> text = detail::DocumentText(std::move(raw), error);
    if (!text) {
        return std::nullopt;
    }
    ElementStream stream;
    if (auto spans = detail::ScanChildElements(std::string_view(text->Data(), text->Size()))) {
        stream.spans_ = std::move(*spans);
        stream.text_ = std::move(text);
        stream.element_ = std::make_unique<pugi::xml_document>();
        return stream;
    }
    stream.whole_ = detail::ParseDocumentText(std::move(*text), error, original);
    if (!stream.whole_) {
        return std::nullopt;
    }
    stream.wholeNext_ = stream.whole_->document_element().first_child();
    return stream;
}

pugi::xml_node ElementStream::Next() {
    if (whole_) {
        while (wholeNext_ && wholeNext_.type() != pugi::node_element) {
            wholeNext_ = wholeNext_.next_sibling();
        }
        const pugi::xml_node element = wholeNext_;
        wholeNext_ = wholeNext_.next_sibling();
        return element;
    }
    if (current_) {
        for (current_ = current_.next_sibling(); current_; current_ = current_.next_sibling()) {
            if (current_.type() == pugi::node_element) {
                return current_;
            }
        }
    }
    if (nextSpan_ == spans_.size()) {
        element_->reset();
        return {};
    }
    // Elements are parsed a run at a time, as one fragment of some tens of kilobytes: each
    // parse costs a page of nodes and a start, and the run's nodes are still a small part of
    // the whole tree.
    constexpr std::size_t kRunBytes = std::size_t{64} << 10;
    const std::size_t first = nextSpan_;
    std::size_t last = first;
    while (last + 1 < spans_.size() && spans_[last + 1].end - spans_[first].begin <= kRunBytes) {
        ++last;
    }
    nextSpan_ = last + 1;
    // In place: the bytes are read once, and the nodes point into them. The text between the
    // elements (blanks, comments, the document element's own text) parses to nodes that are
    // not elements, which are passed by.
    const std::size_t begin = spans_[first].begin;
    const pugi::xml_parse_result result = element_->load_buffer_inplace(
        text_->Data() + begin, spans_[last].end - begin,
        detail::kParseOptions | pugi::parse_fragment, pugi::encoding_utf8);
    if (!result) {
        if (result.status == pugi::status_out_of_memory) {
            throw std::bad_alloc();
        }
        // The scan proved the elements well-formed: only a fault of this reader comes here.
        throw Error("elements " + std::to_string(first + 1) + " to " + std::to_string(last + 1) +
                    " of the document do not parse alone: " + result.description());
    }
    ReleaseTextBefore(begin);
    current_ = element_->first_child();
    while (current_ && current_.type() != pugi::node_element) {
        current_ = current_.next_sibling();
    }
    return current_;
}

void ElementStream::ReleaseTextBefore(std::size_t offset) {
    // The runs before offset are parsed and their nodes gone: their pages go back to the
    // system, so that with every block of a large project alive the file's text is not held
    // beside them. Only whole pages inside the buffer: the allocator's own words around it stay.
    static const auto kPage = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto start = reinterpret_cast<std::uintptr_t>(text_->Data());
    const std::uintptr_t from = (start + released_ + kPage - 1) / kPage * kPage;
    const std::uintptr_t to = (start + offset) / kPage * kPage;
    if (to > from) {
        // Advice only: where the system declines, the pages stay, as they would without it.
        madvise(reinterpret_cast<void*>(from), to - from, MADV_DONTNEED);
        released_ = to - start;
    }
}

}  // namespace zerbin::xml
