// Helpers for the application object tests: block libraries on disk (the fixture library and
// throw-away ones), the fixture SNVT dictionary, blocks made in the host's order of calls, and
// the texts of recorded messages.
//
// The store of parsed definitions lives for the whole process and knows types by name only,
// so a throw-away library must use names that no other test uses: UniqueTypeName.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <pugixml.hpp>

#include "app_object/CDBAppObject.h"
#include "platform/Files.h"
#include "platform/Messages.h"
#include "platform/Xml.h"
#include "tests/TestSupport.h"

namespace zerbin::testing {

inline std::filesystem::path AppObjectFixtures() {
    return FixturesDir() / "app_object";
}

// Points the component folder into a block library while it lives, so that the library is
// that folder's parent.
class ScopedComponentFolder {
public:
    explicit ScopedComponentFolder(const std::filesystem::path& library) {
        SetComponentFolder(library / "component");
    }
    ~ScopedComponentFolder() { SetComponentFolder({}); }
    ScopedComponentFolder(const ScopedComponentFolder&) = delete;
    ScopedComponentFolder& operator=(const ScopedComponentFolder&) = delete;
};

// The library of fixture block types under tests/fixtures/app_object/library.
class FixtureLibrary {
public:
    FixtureLibrary() : folder_(AppObjectFixtures() / "library") {}

private:
    ScopedComponentFolder folder_;
};

// A fresh, empty library in the temporary folder, removed again at the end.
class TempLibrary {
public:
    TempLibrary() : root_(MakeRoot()), folder_(root_ / "library") {}
    ~TempLibrary() {
        std::error_code ec;
        std::filesystem::remove_all(root_, ec);
    }
    TempLibrary(const TempLibrary&) = delete;
    TempLibrary& operator=(const TempLibrary&) = delete;

    // The library folder: block types are its subfolders.
    std::filesystem::path Folder() const { return root_ / "library"; }
    // The folder that holds the library, outside it.
    std::filesystem::path Outside() const { return root_; }

    // Writes library/relative, creating folders on the way.
    std::filesystem::path WriteFile(const std::filesystem::path& relative,
                                    const std::string& content) const {
        return WriteAt(Folder() / relative, content);
    }
    // The definition file of a type: library/type/type.xml.
    std::filesystem::path WriteDefinition(const std::string& type, const std::string& xml) const {
        return WriteFile(std::filesystem::path(type) / (type + ".xml"), xml);
    }

    static std::filesystem::path WriteAt(const std::filesystem::path& file,
                                         const std::string& content) {
        std::filesystem::create_directories(file.parent_path());
        std::ofstream out(file, std::ios::binary);
        out << content;
        return file;
    }

private:
    static std::filesystem::path MakeRoot() {
        static int counter = 0;
        const std::filesystem::path root =
            std::filesystem::temp_directory_path() /
            ("zerbin-app-object-" + std::to_string(::getpid()) + "-" + std::to_string(++counter));
        std::filesystem::create_directories(root / "library");
        return root;
    }

    std::filesystem::path root_;
    ScopedComponentFolder folder_;
};

// A type name that no other test of this process has used.
inline std::string UniqueTypeName(const std::string& stem) {
    static int counter = 0;
    return stem + "_" + std::to_string(++counter);
}

// A definition with a header and nothing else; elements is the XML of the header elements.
inline std::string HeaderOnlyDefinition(const std::string& elements) {
    return "<?xml version=\"1.0\"?>\n<AppObject>" + elements + "</AppObject>\n";
}

// The fixture SNVT dictionary, parsed once.
inline std::shared_ptr<const pugi::xml_document> FixtureDictionary() {
    static const std::shared_ptr<const pugi::xml_document> dictionary = [] {
        xml::ParseError error;
        auto document = xml::LoadFile(AppObjectFixtures() / "snvt.xml", &error);
        if (!document) {
            ADD_FAILURE() << "fixture dictionary: " << error.reason;
        }
        return std::shared_ptr<const pugi::xml_document>(document);
    }();
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
    auto block = std::make_shared<CDBAppObject>();
    block->IAppObject_XmlSNVTDoc(FixtureDictionary());
    int32_t errorCode = 0;
    block->IAppObject_Init(type, errorCode);
    block->IAppObject_ManageShortFloat(manageShortFloat);
    block->IAppObject_Create();
    return HostedBlock(std::move(block));
}

inline std::vector<std::string> Texts(const ScopedMessageRecorder& recorder) {
    std::vector<std::string> texts;
    for (const Message& message : recorder.Messages()) {
        texts.push_back(message.text);
    }
    return texts;
}

inline std::string NotAvailableMessage(const std::string& type) {
    return "Error: The object " + type + " is not available; Please verify its name.";
}

// A node and its subtree as compact XML text.
inline std::string XmlText(pugi::xml_node node) {
    struct Writer : pugi::xml_writer {
        std::string text;
        void write(const void* data, size_t size) override {
            text.append(static_cast<const char*>(data), size);
        }
    } writer;
    node.print(writer, "", pugi::format_raw);
    return writer.text;
}

}  // namespace zerbin::testing
