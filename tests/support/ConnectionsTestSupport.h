// Helpers of the connection tests: definition elements from inline XML, and the small SNVT
// dictionary of tests/fixtures/connections installed for the lifetime of a test.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include <pugixml.hpp>

#include "base/MMain.h"
#include "base/Xml.h"
#include "tests/support/TestSupport.h"

namespace zerbin::testing {

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

// Installs the connection tests' dictionary and puts the previous one back.
struct ScopedConnectionsDictionary : ScopedDictionary {
    ScopedConnectionsDictionary()
        : ScopedDictionary(LoadXml(FixturesDir() / "connections" / "snvt_dictionary.xml")) {}
};

}  // namespace zerbin::testing
