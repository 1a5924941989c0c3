// A block made from a compiled type against one from a fresh compilation, under every setting
// that changes what a creation makes: short floats, the unit system, an owner device document
// or none. The compiled types of the other settings are made first in the same process, so a
// block that took one of them instead of its own shows here.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "app_object/CDBAppObject.h"
#include "app_object/HostOrder.h"
#include "base/ProcessState.h"
#include "base/Xml.h"
#include "datatypes/UnitConverter.h"
#include "platform/Files.h"
#include "platform/Messages.h"
#include "tests/support/RandomBlock.h"

namespace zerbin {
namespace {

namespace fs = std::filesystem;

struct Library {
    fs::path folder;
    fs::path dictionary;
};

const Library kLibraries[] = {
    {fs::path(ZERBIN_DATA_DIR) / "library", fs::path(ZERBIN_DATA_DIR) / "snvts.xml"},
    {fs::path(ZERBIN_FIXTURES_DIR) / "app_object" / "library",
     fs::path(ZERBIN_FIXTURES_DIR) / "app_object" / "snvt.xml"},
};

struct Setting {
    bool shortFloat;
    UnitSystem units;
    bool device;
};

const Setting kSettings[] = {
    {false, UnitSystem::SI, true},
    {true, UnitSystem::SI, true},
    {false, UnitSystem::US, true},
    {false, UnitSystem::SI, false},
};

// The messages of the making, each member's type and length, and what a project keeps of the
// block after seeded random values.
struct Observed {
    std::vector<std::string> messages;
    std::string members;
    testing::Snapshot randomized;
    bool operator==(const Observed&) const = default;
};

void PrintTo(const Observed& o, std::ostream* out) {
    *out << "\n  messages: " << o.messages.size() << "\n  members:\n" << o.members;
    testing::PrintTo(o.randomized, out);
}

std::string Members(CDBAppObject& block) {
    std::string members;
    for (const auto& attribute : testing::AttributesOf(block)) {
        const auto type = attribute->IAttribute_SNVTType();
        members +=
            attribute->IAttribute_Name() + " " +
            (type ? type->ISNVType_ID() + " " + std::to_string(type->ISNVType_Length()) : "-") +
            " " + attribute->IAttribute_DispValue() + "\n";
    }
    if (const auto inputs = block.IAppObject_Inputs()) {
        for (const auto& input : inputs->IInputs_NewEnum()) {
            members +=
                input->IInput_Name() + " " + std::to_string(input->IInput_CDBPosition()) + "\n";
        }
    }
    return members + "CDB " + std::to_string(block.IAppObject_CDBDimension()) + "\n";
}

Observed Observe(const std::string& type, const Setting& setting,
                 const std::shared_ptr<const pugi::xml_document>& dictionary) {
    static const auto device =
        xml::LoadFile(fs::path(ZERBIN_DATA_DIR) / "devices" / "Controller.xml", nullptr);
    SetUnitSystem(setting.units);
    Observed observed;
    ScopedMessageRecorder messages;
    const auto block = NewBlock(
        type, {dictionary, setting.device ? device : nullptr, setting.shortFloat, {}, {}, {}});
    observed.members = Members(*block);
    testing::RandomValues values(20261125u);
    testing::Randomize(*block, values);
    observed.randomized = testing::Take(*block);
    block->IAppObject_Destroy();
    observed.messages = testing::MessageTexts(messages);
    SetUnitSystem(UnitSystem::SI);
    return observed;
}

std::vector<std::string> TypesOf(const fs::path& library) {
    std::vector<std::string> types;
    for (const auto& entry : fs::directory_iterator(library)) {
        const std::string name = entry.path().filename().string();
        if (fs::exists(entry.path() / (name + ".xml"))) {
            types.push_back(name);
        }
    }
    std::sort(types.begin(), types.end());
    return types;
}

// A process as it starts, with the library set.
void Restart(const Library& library) {
    ProcessState::Reset();
    SetComponentFolder(library.folder / "component");
}

TEST(CompiledType, EachSettingMakesTheBlocksAFreshCompilationMakes) {
    for (const Library& library : kLibraries) {
        const auto dictionary = xml::LoadFile(library.dictionary, nullptr);
        ASSERT_TRUE(dictionary);
        for (const std::string& type : TypesOf(library.folder)) {
            SCOPED_TRACE(type);
            std::vector<Observed> fresh;
            for (const Setting& setting : kSettings) {
                Restart(library);
                fresh.push_back(Observe(type, setting, dictionary));
            }
            Restart(library);
            for (const Setting& setting : kSettings) {
                Observe(type, setting, dictionary);
            }
            for (std::size_t n = 0; n < std::size(kSettings); ++n) {
                EXPECT_EQ(Observe(type, kSettings[n], dictionary), fresh[n]) << "setting " << n;
            }
        }
    }
    ProcessState::Reset();
}

}  // namespace
}  // namespace zerbin
