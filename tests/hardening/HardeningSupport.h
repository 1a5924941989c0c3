// Helpers for the hardening tests: the shipped data, blocks made in the host's order of calls,
// a message sink that only counts, and the saved form of a block.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include "app_object/CDBAppObject.h"
#include "app_object/HostOrder.h"
#include "base/MMain.h"
#include "base/Xml.h"
#include "platform/Files.h"
#include "platform/Messages.h"
#include "tests/TestSupport.h"
#include "tests/support/RandomBlock.h"

namespace zerbin::testing {

inline std::filesystem::path DataDir() {
    return ZERBIN_DATA_DIR;
}

inline std::shared_ptr<const pugi::xml_document> ShippedDictionary() {
    static const auto dictionary = LoadXml(DataDir() / "snvts.xml");
    return dictionary;
}

inline std::shared_ptr<const pugi::xml_document> ShippedDevice() {
    static const auto device = LoadXml(DataDir() / "devices" / "Controller.xml");
    return device;
}

// The block types of the shipped library, sorted by name.
inline std::vector<std::string> ShippedTypes() {
    std::vector<std::string> types;
    for (const auto& entry : std::filesystem::directory_iterator(DataDir() / "library")) {
        const std::string name = entry.path().filename().string();
        if (std::filesystem::exists(entry.path() / (name + ".xml"))) {
            types.push_back(name);
        }
    }
    std::sort(types.begin(), types.end());
    return types;
}

// Writes the definition of a new type into the library below the folder: the type's name.
inline std::string PlantType(const TempFolder& folder, const std::string& stem,
                             const std::string& definition) {
    const std::string type = UniqueTypeName(stem);
    folder.Write(std::filesystem::path("library") / type / (type + ".xml"), definition);
    return type;
}

// A block of the type with the shipped documents and a host's keys.
inline std::shared_ptr<CDBAppObject> MakeBlock(const std::string& type) {
    return NewBlock(type, {SnvtDictionary(), ShippedDevice(), false, "Project\\Block",
                           "Net\\Device\\Block", std::nullopt});
}

// The names of the child elements of a node, in order.
inline std::vector<std::string> ChildNames(pugi::xml_node node) {
    std::vector<std::string> names;
    for (pugi::xml_node child : node.children()) {
        if (child.type() == pugi::node_element) {
            names.push_back(child.name());
        }
    }
    return names;
}

// Counts the messages shown by their text and keeps nothing else, for tests that show a
// great many.
class ScopedCountingSink : public MessageSink {
public:
    ScopedCountingSink() : previous_(CurrentMessageSink()) {
        // Not owning: the sink is put back before this object goes.
        SetMessageSink(std::shared_ptr<MessageSink>(std::shared_ptr<MessageSink>{}, this));
    }
    ~ScopedCountingSink() override { SetMessageSink(previous_); }
    ScopedCountingSink(const ScopedCountingSink&) = delete;
    ScopedCountingSink& operator=(const ScopedCountingSink&) = delete;

    int Show(const Message& message) override {
        ++counts_[message.text];
        return kMessageOk;
    }
    const std::map<std::string, int64_t>& Counts() const { return counts_; }

private:
    std::map<std::string, int64_t> counts_;
    std::shared_ptr<MessageSink> previous_;
};

// Installs the shipped dictionary for every test of a suite; tests elsewhere may have
// installed another one.
class ShippedDictionaryTest : public ::testing::Test {
protected:
    void SetUp() override { SetSnvtDictionary(ShippedDictionary()); }
};

}  // namespace zerbin::testing
