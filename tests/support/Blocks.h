// Blocks for the engine's tests: made in the host's order (NewBlock) and taken apart at the
// end, the libraries they come from (shipped, fixtures, or written by the test) and the
// documents they read, each parsed once for the whole program.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <utility>

#include "app_object/CDBAppObject.h"
#include "app_object/HostOrder.h"
#include "parameters/CDBAttribute.h"
#include "platform/Files.h"
#include "tests/support/TestSupport.h"

namespace zerbin::testing {

inline std::filesystem::path DataDir() {
    return ZERBIN_DATA_DIR;
}

// A document read once for the whole program; nothing writes to it.
inline std::shared_ptr<const pugi::xml_document> Document(const std::filesystem::path& file) {
    static std::map<std::filesystem::path, std::shared_ptr<const pugi::xml_document>> read;
    auto& document = read[file];
    if (!document) {
        document = LoadXml(file);
    }
    return document;
}

inline std::shared_ptr<const pugi::xml_document> ShippedDictionary() {
    return Document(DataDir() / "snvts.xml");
}

// Block types are the subfolders of a library; the component folder is a sibling of them.
inline void UseLibrary(const std::filesystem::path& library) {
    SetComponentFolder(library / "component");
}

// The block types of a library, sorted by name.
inline std::vector<std::string> TypesOf(const std::filesystem::path& library) {
    std::vector<std::string> types;
    for (const auto& entry : std::filesystem::directory_iterator(library)) {
        const std::string name = entry.path().filename().string();
        if (std::filesystem::exists(entry.path() / (name + ".xml"))) {
            types.push_back(name);
        }
    }
    std::sort(types.begin(), types.end());
    return types;
}

// The shipped dictionary and owner device, and a host's keys; the library is chosen apart.
inline HostSetup Shipped() {
    return {ShippedDictionary(),
            Document(DataDir() / "devices" / "Controller.xml"),
            false,
            "Project\\Block",
            "Net\\Device\\Block",
            std::nullopt};
}

// The fixture library and dictionary of a test folder (tests/fixtures/<folder>).
inline HostSetup Fixtures(const std::string& folder, const std::string& dictionary,
                          const std::string& library = "library") {
    UseLibrary(FixturesDir() / folder / library);
    return {Document(FixturesDir() / folder / dictionary), nullptr, false, {}, {}, {}};
}

inline HostSetup WithOwnerDevice(std::shared_ptr<const pugi::xml_document> device) {
    HostSetup setup;
    setup.ownerDevice = std::move(device);
    return setup;
}

inline HostSetup WithShortFloat(bool manageShortFloat) {
    HostSetup setup;
    setup.manageShortFloat = manageShortFloat;
    return setup;
}

// A fresh, empty library in the temporary folder, in use while it lives.
class TempLibrary {
public:
    TempLibrary() {
        std::filesystem::create_directories(Folder());
        UseLibrary(Folder());
    }

    std::filesystem::path Folder() const { return temp_.Path() / "library"; }

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
};

// A definition with a header and nothing else; elements is the XML of the header elements.
inline std::string HeaderOnlyDefinition(const std::string& elements) {
    return "<?xml version=\"1.0\"?>\n<AppObject>" + elements + "</AppObject>\n";
}

// A block made by NewBlock, taken apart with IAppObject_Destroy when the test is done with it.
class TestBlock {
public:
    explicit TestBlock(const std::string& type, const HostSetup& setup = {})
        : block_(NewBlock(type, setup)) {}
    ~TestBlock() {
        if (block_) {
            block_->IAppObject_Destroy();
        }
    }
    TestBlock(TestBlock&&) = default;
    TestBlock& operator=(TestBlock&&) = delete;
    TestBlock(const TestBlock&) = delete;
    TestBlock& operator=(const TestBlock&) = delete;

    CDBAppObject* operator->() const { return block_.get(); }
    CDBAppObject& operator*() const { return *block_; }
    const std::shared_ptr<CDBAppObject>& Object() const { return block_; }
    // Hands the block over without taking it apart, for tests of the teardown itself.
    std::shared_ptr<CDBAppObject> Release() { return std::move(block_); }

    // The attribute of that name; fails the test when there is none.
    std::shared_ptr<CDBAttribute> Attribute(const std::string& name) const {
        auto found = std::dynamic_pointer_cast<CDBAttribute>(
            block_->IAppObject_Attributes()->IAttributes_Item(name));
        EXPECT_NE(found, nullptr) << "no attribute " << name;
        return found;
    }

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

}  // namespace zerbin::testing
