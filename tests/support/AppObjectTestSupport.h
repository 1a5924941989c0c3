// Helpers for the application object tests: block libraries on disk (the fixture library and
// throw-away ones), the fixture SNVT dictionary and blocks made in the host's order of calls.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <pugixml.hpp>

#include "app_object/CDBAppObject.h"
#include "app_object/HostOrder.h"
#include "base/Xml.h"
#include "platform/Files.h"
#include "platform/Messages.h"
#include "tests/support/TestSupport.h"

namespace zerbin::testing {

// The library of fixture block types under tests/fixtures/app_object/library.
class FixtureLibrary {
public:
    FixtureLibrary() : folder_(FixturesDir() / "app_object" / "library") {}

private:
    ScopedLibrary folder_;
};

// A fresh, empty library in the temporary folder, removed again at the end.
class TempLibrary {
public:
    TempLibrary() : library_(Folder()) { std::filesystem::create_directories(Folder()); }

    // The library folder: block types are its subfolders.
    std::filesystem::path Folder() const { return temp_.Path() / "library"; }

    // Writes library/relative, creating folders on the way.
    std::filesystem::path WriteFile(const std::filesystem::path& relative,
                                    const std::string& content) const {
        return temp_.Write(std::filesystem::path("library") / relative, content);
    }
    // The definition file of a type: library/type/type.xml.
    std::filesystem::path WriteDefinition(const std::string& type, const std::string& xml) const {
        return WriteFile(std::filesystem::path(type) / (type + ".xml"), xml);
    }

private:
    TempFolder temp_;
    ScopedLibrary library_;
};

// A definition with a header and nothing else; elements is the XML of the header elements.
inline std::string HeaderOnlyDefinition(const std::string& elements) {
    return "<?xml version=\"1.0\"?>\n<AppObject>" + elements + "</AppObject>\n";
}

// The fixture SNVT dictionary, parsed once.
inline std::shared_ptr<const pugi::xml_document> FixtureDictionary() {
    static const std::shared_ptr<const pugi::xml_document> dictionary =
        LoadXml(FixturesDir() / "app_object" / "snvt.xml");
    return dictionary;
}

// A block as the host holds it: made and loaded in the host's order, and taken apart with
// IAppObject_Destroy when the test is done with it, so that nothing leaks.
class HostedBlock {
public:
    explicit HostedBlock(std::shared_ptr<CDBAppObject> block) : block_(std::move(block)) {}
    ~HostedBlock() {
        if (block_) {
            block_->IAppObject_Destroy();
        }
    }
    HostedBlock(HostedBlock&&) = default;
    HostedBlock& operator=(HostedBlock&&) = delete;
    HostedBlock(const HostedBlock&) = delete;
    HostedBlock& operator=(const HostedBlock&) = delete;

    CDBAppObject* operator->() const { return block_.get(); }
    CDBAppObject& operator*() const { return *block_; }
    const std::shared_ptr<CDBAppObject>& get() const { return block_; }
    // Hands the block over without taking it apart, for tests of the teardown itself.
    std::shared_ptr<CDBAppObject> Release() { return std::move(block_); }

private:
    std::shared_ptr<CDBAppObject> block_;
};

// A block given its type and nothing more, for tests of the definition and its header.
inline std::shared_ptr<CDBAppObject> InitBlock(const std::string& type) {
    auto block = std::make_shared<CDBAppObject>();
    int32_t errorCode = 0;
    block->IAppObject_Init(type, errorCode);
    return block;
}

// Construct, dictionary, type, short float setting, create: steps 1 to 5 of the host.
inline HostedBlock CreateBlock(const std::string& type, bool manageShortFloat = false) {
    return HostedBlock(
        NewBlock(type, {FixtureDictionary(), nullptr, manageShortFloat, {}, {}, {}}));
}

}  // namespace zerbin::testing
