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
#include "tests/support/RandomBlock.h"
#include "tests/support/TestSupport.h"

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

// Installs the shipped dictionary for every test of a suite; tests elsewhere may have
// installed another one.
class ShippedDictionaryTest : public ::testing::Test {
protected:
    void SetUp() override { SetSnvtDictionary(ShippedDictionary()); }
};

}  // namespace zerbin::testing
