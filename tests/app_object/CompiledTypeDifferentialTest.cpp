// A block made from a compiled type against one from a fresh compilation, under every setting
// that changes what a creation makes: short floats, the unit system, an owner device document
// or none. The compiled types of the other settings are made first in the same process, so a
// block that took one of them instead of its own shows here.

#include "base/ProcessState.h"
#include "datatypes/UnitConverter.h"
#include "tests/support/Blocks.h"
#include "tests/support/RandomBlock.h"

namespace zerbin {
namespace {

using namespace testing;

struct Library {
    std::filesystem::path folder;
    std::filesystem::path dictionary;
};

const Library kLibraries[] = {
    {DataDir() / "library", DataDir() / "snvts.xml"},
    {FixturesDir() / "app_object" / "library", FixturesDir() / "app_object" / "snvt.xml"},
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

// The messages of the making, each member's type and length, what a project keeps of the
// block after seeded random values, and the blocks two loads of that project make: the second
// takes what the first left with the type (its values kept beside the type's members, its
// selectors switched).
struct Observed {
    std::vector<std::string> messages;
    std::string members;
    testing::Snapshot randomized;
    std::vector<testing::Snapshot> loaded;
    bool operator==(const Observed&) const = default;
};

void PrintTo(const Observed& o, std::ostream* out) {
    *out << "\n  messages: " << o.messages.size() << "\n  members:\n" << o.members;
    testing::PrintTo(o.randomized, out);
    for (const testing::Snapshot& loaded : o.loaded) {
        testing::PrintTo(loaded, out);
    }
}

std::string Members(CDBAppObject& block) {
    std::string members;
    for (const auto& attribute : AttributesOf(block)) {
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
    static const auto device = Document(DataDir() / "devices" / "Controller.xml");
    SetUnitSystem(setting.units);
    Observed observed;
    ScopedMessageRecorder messages;
    const HostSetup host{
        dictionary, setting.device ? device : nullptr, setting.shortFloat, "Block1", {}, {}};
    const auto block = NewBlock(type, host);
    observed.members = Members(*block);
    RandomValues values(20261125u);
    Randomize(*block, values);
    observed.randomized = Take(*block);
    const SavedBlock saved = Save(*block);
    block->IAppObject_Destroy();
    for (int load = 0; load < 2; ++load) {
        const auto loaded = NewBlock(type, host);
        loaded->IAppObject_XmlLoad(saved.Element());
        observed.loaded.push_back(Take(*loaded));
        loaded->IAppObject_Destroy();
    }
    observed.messages = MessageTexts(messages);
    SetUnitSystem(UnitSystem::SI);
    return observed;
}

// A process as it starts, with the library set.
void Restart(const Library& library) {
    ProcessState::Reset();
    UseLibrary(library.folder);
}

TEST(CompiledType, EachSettingMakesTheBlocksAFreshCompilationMakes) {
    for (const Library& library : kLibraries) {
        const auto dictionary = Document(library.dictionary);
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

// Blocks of a type share what none of them changed; what a host changes through one block's
// compatible set stays with that block, whether it was made first or from the compiled type.
TEST(CompiledType, ABlockChangesOnlyItsOwnCompatibleSet) {
    UseLibrary(DataDir() / "library");
    const auto compatibles = [](TestBlock& block) {
        return block->IAppObject_Inputs()->IInputs_Item("SpaceTemp")->Iinput_SNVTCompatibles();
    };
    TestBlock first("THERMOSTAT", Shipped());
    TestBlock second("THERMOSTAT", Shipped());
    const std::string before = compatibles(second)->ICompatibleSNVTs_ToString();
    compatibles(first)->ICompatibleSNVTs_Add("8");
    compatibles(second)->ICompatibleSNVTs_Remove("105");
    TestBlock third("THERMOSTAT", Shipped());
    EXPECT_EQ(compatibles(third)->ICompatibleSNVTs_ToString(), before);
}

}  // namespace
}  // namespace zerbin
