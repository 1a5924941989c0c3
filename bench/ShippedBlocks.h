// What the benchmark programs share: the shipped data of the source tree they were built
// from, and a block created in the host's order.
#pragma once

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "app_object/CDBAppObject.h"
#include "app_object/HostOrder.h"
#include "base/Xml.h"
#include "platform/Messages.h"

namespace zerbin::bench {

inline const std::filesystem::path kData =
    std::filesystem::path(__FILE__).parent_path().parent_path() / "data";

struct Documents {
    std::shared_ptr<const pugi::xml_document> dictionary;
    std::shared_ptr<const pugi::xml_document> device;
};

// Loaded once; either may be null when the data folder is broken, which main() checks.
inline const Documents& Shipped() {
    static const Documents documents{xml::LoadFile(kData / "snvts.xml", nullptr),
                                     xml::LoadFile(kData / "devices" / "Controller.xml", nullptr)};
    return documents;
}

// Counts instead of printing: a benchmark of a type that shows messages is an error.
class CountingSink : public MessageSink {
public:
    int Show(const Message&) override {
        ++count;
        return kMessageOk;
    }
    int count = 0;
};

inline std::shared_ptr<CDBAppObject> CreateBlock(const std::string& type, const std::string& key) {
    return NewBlock(type, {Shipped().dictionary, Shipped().device, false, key, {}, {}});
}

// The folder names of the shipped library that hold their own definition, sorted.
inline std::vector<std::string> ShippedTypes() {
    std::vector<std::string> types;
    for (const auto& entry : std::filesystem::directory_iterator(kData / "library")) {
        const std::string name = entry.path().filename().string();
        if (std::filesystem::exists(entry.path() / (name + ".xml"))) {
            types.push_back(name);
        }
    }
    std::sort(types.begin(), types.end());
    return types;
}

}  // namespace zerbin::bench
