#include "base/XmlElementStream.h"

#include <cstring>
#include <new>
#include <utility>

#include "base/XmlDocumentText.h"
#include "interfaces/Error.h"

namespace zerbin::xml {

ElementStream::ElementStream(ElementStream&&) noexcept = default;
ElementStream& ElementStream::operator=(ElementStream&&) noexcept = default;
ElementStream::~ElementStream() = default;

std::optional<ElementStream> ElementStream::OpenFile(const std::filesystem::path& file,
                                                     ParseError* error, std::uintmax_t maxBytes) {
    const auto read = [&] { return detail::ReadDocumentFile(file, maxBytes); };
    std::optional<FileBytes> bytes;
    try {
        bytes.emplace(read());
    } catch (const IoError& failure) {
        detail::FillUnreadable(error, failure);
        return std::nullopt;
    }
    return Open(std::move(*bytes), error, read);
}

std::optional<ElementStream> ElementStream::OpenString(std::string_view text, ParseError* error) {
    const auto copy = [text] {
        auto* data = static_cast<char*>(pugi::get_memory_allocation_function()(text.size() + 1));
        if (data == nullptr) {
            throw std::bad_alloc();
        }
        std::memcpy(data, text.data(), text.size());
        data[text.size()] = '\0';
        return FileBytes(data, text.size(), pugi::get_memory_deallocation_function());
    };
    return Open(copy(), error, copy);
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
    if (next_ == spans_.size()) {
        element_->reset();
        return {};
    }
    const detail::ElementSpan span = spans_[next_++];
    // In place: the element's bytes are read once, and its nodes point into them.
    const pugi::xml_parse_result result =
        element_->load_buffer_inplace(text_->Data() + span.begin, span.end - span.begin,
                                      detail::kParseOptions, pugi::encoding_utf8);
    if (!result) {
        if (result.status == pugi::status_out_of_memory) {
            throw std::bad_alloc();
        }
        // The scan proved the element well-formed: only a fault of this reader comes here.
        throw Error("element " + std::to_string(next_) +
                    " of the document does not parse alone: " + result.description());
    }
    return element_->document_element();
}

}  // namespace zerbin::xml
