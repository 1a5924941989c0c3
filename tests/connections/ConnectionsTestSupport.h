// Helpers of the connection tests: definition elements from inline XML, and the small SNVT
// dictionary of tests/fixtures/connections installed for the lifetime of a test.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include <pugixml.hpp>

#include "app_object/MMain.h"
#include "platform/Xml.h"
#include "tests/TestSupport.h"

namespace zerbin::testing {

// A parsed document and its document element, kept together so the node stays valid.
struct DefinitionElement {
    std::shared_ptr<pugi::xml_document> doc;
    pugi::xml_node node;
    std::string Name() const { return xml::BaseName(node); }
};

inline DefinitionElement ParseElement(const std::string& text) {
    xml::ParseError error;
    auto doc = xml::LoadString(text, &error);
    EXPECT_NE(doc, nullptr) << text << ": " << error.reason;
    if (!doc) {
        return {};
    }
    return {doc, doc->document_element()};
}

// Installs the connection tests' dictionary and puts the previous one back.
class ScopedConnectionsDictionary {
public:
    ScopedConnectionsDictionary() : previous_(SnvtDictionary()) {
        xml::ParseError error;
        auto doc = xml::LoadFile(FixturesDir() / "connections" / "snvt_dictionary.xml", &error);
        EXPECT_NE(doc, nullptr) << error.reason;
        SetSnvtDictionary(doc);
    }
    ~ScopedConnectionsDictionary() { SetSnvtDictionary(previous_); }
    ScopedConnectionsDictionary(const ScopedConnectionsDictionary&) = delete;
    ScopedConnectionsDictionary& operator=(const ScopedConnectionsDictionary&) = delete;

private:
    std::shared_ptr<const pugi::xml_document> previous_;
};

}  // namespace zerbin::testing
