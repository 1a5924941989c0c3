// Helpers shared by the test suites.
#pragma once

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <pugixml.hpp>

#include "base/MMain.h"
#include "base/Xml.h"
#include "platform/Messages.h"

namespace zerbin::testing {

// The folder of shared test fixtures.
inline std::filesystem::path FixturesDir() {
    return ZERBIN_FIXTURES_DIR;
}

// Switches LC_NUMERIC to a locale whose decimal separator is a comma for its lifetime, and
// detects the separator after each switch so DecimalSeparator() follows. When no such locale
// is installed nothing changes and Active() is false; use ZERBIN_REQUIRE_COMMA_LOCALE. Given
// comma = false it switches to "C" instead, so that a test can run under both separators.
class ScopedLocale {
public:
    explicit ScopedLocale(bool comma = true) {
        const char* current = std::setlocale(LC_NUMERIC, nullptr);
        previous_ = current != nullptr ? current : "C";
        for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "C"}) {
            if ((std::string(name) == "C") == !comma &&
                std::setlocale(LC_NUMERIC, name) != nullptr) {
                active_ = true;
                break;
            }
        }
        DetectDecimalSeparator();
    }
    ~ScopedLocale() {
        std::setlocale(LC_NUMERIC, previous_.c_str());
        DetectDecimalSeparator();
    }
    ScopedLocale(const ScopedLocale&) = delete;
    ScopedLocale& operator=(const ScopedLocale&) = delete;

    bool Active() const { return active_; }

private:
    std::string previous_;
    bool active_ = false;
};

// A document parsed from text or read from a file; a document that does not load fails the
// test with the reason.
inline std::shared_ptr<pugi::xml_document> ParseXml(std::string_view text) {
    xml::ParseError error;
    auto document = xml::LoadString(text, &error);
    EXPECT_NE(document, nullptr) << error.reason;
    return document;
}

inline std::shared_ptr<pugi::xml_document> LoadXml(const std::filesystem::path& file) {
    xml::ParseError error;
    auto document = xml::LoadFile(file, &error);
    EXPECT_NE(document, nullptr) << file << ": " << error.reason;
    return document;
}

// Installs an SNVT dictionary for its lifetime and puts the previous one back.
class ScopedDictionary {
public:
    explicit ScopedDictionary(std::string_view text) : ScopedDictionary(ParseXml(text)) {}
    explicit ScopedDictionary(std::shared_ptr<const pugi::xml_document> document)
        : previous_(SnvtDictionary()) {
        SetSnvtDictionary(std::move(document));
    }
    ~ScopedDictionary() { SetSnvtDictionary(previous_); }
    ScopedDictionary(const ScopedDictionary&) = delete;
    ScopedDictionary& operator=(const ScopedDictionary&) = delete;

private:
    std::shared_ptr<const pugi::xml_document> previous_;
};

// A parsed document and its document element, kept together so the node stays valid.
struct DefinitionElement {
    std::shared_ptr<pugi::xml_document> doc;
    pugi::xml_node node;
    std::string Name() const { return xml::BaseName(node); }
};

inline DefinitionElement ParseElement(const std::string& text) {
    auto doc = ParseXml(text);
    return doc ? DefinitionElement{doc, doc->document_element()} : DefinitionElement{};
}

// A fresh folder under the temporary folder, removed with everything in it.
class TempFolder {
public:
    TempFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "zerbin-test-XXXXXX");
        if (::mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("mkdtemp failed");
        }
        path_ = pattern;
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& Path() const { return path_; }

    // Writes text to a file below the folder, making the folders on the way.
    std::filesystem::path Write(const std::filesystem::path& relative,
                                const std::string& text) const {
        const std::filesystem::path file = path_ / relative;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
        return file;
    }

private:
    std::filesystem::path path_;
};

inline std::vector<std::string> MessageTexts(const ScopedMessageRecorder& recorder) {
    std::vector<std::string> texts;
    for (const Message& message : recorder.Messages()) {
        texts.push_back(message.text);
    }
    return texts;
}

// What a block says of a type that it cannot find.
inline std::string NotAvailable(const std::string& type) {
    return "Error: The object " + type + " is not available; Please verify its name.";
}

// A node and everything below it, or what a document holds, as compact XML text.
inline std::string XmlText(pugi::xml_node node) {
    std::ostringstream out;
    node.print(out, "", pugi::format_raw);
    return out.str();
}

// "<SNVTS>" + entries + "</SNVTS>": a dictionary written inline.
inline std::string Snvts(const std::string& entries) {
    return "<SNVTS>" + entries + "</SNVTS>";
}

}  // namespace zerbin::testing

// Skips the current test when the comma locale could not be switched on.
#define ZERBIN_REQUIRE_COMMA_LOCALE(scopedLocale)                                         \
    do {                                                                                  \
        if (!(scopedLocale).Active()) {                                                   \
            GTEST_SKIP() << "locale de_DE.UTF-8 is not installed (.ci/install makes it)"; \
        }                                                                                 \
    } while (false)

// The comma separator in force when comma is set, else the point.
#define ZERBIN_SEPARATOR_FOR(comma, name)          \
    ::zerbin::testing::ScopedLocale name((comma)); \
    ZERBIN_REQUIRE_COMMA_LOCALE(name)
