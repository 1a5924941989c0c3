// Installs SNVT dictionaries for the data type tests and restores the previous one.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

#include <pugixml.hpp>

#include "app_object/MMain.h"
#include "platform/Xml.h"

namespace zerbin::testing {

inline std::shared_ptr<const pugi::xml_document> ParseDictionary(std::string_view text) {
    xml::ParseError error;
    auto document = xml::LoadString(text, &error);
    EXPECT_NE(document, nullptr) << error.reason;
    return document;
}

// Installs a dictionary for its lifetime.
class ScopedDictionary {
public:
    explicit ScopedDictionary(std::string_view text) : ScopedDictionary(ParseDictionary(text)) {}
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

// "<SNVTS>" + entries + "</SNVTS>".
inline std::string Snvts(const std::string& entries) {
    return "<SNVTS>" + entries + "</SNVTS>";
}

}  // namespace zerbin::testing
