// A block made in a process that has already made blocks of its type, with every store, index
// and cache warm, against the first block of the type in a process started afresh: for every
// shipped type and every fixture type, the same members, messages, image and project XML,
// under random values and after a restore.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "app_object/CDBAppObject.h"
#include "app_object/HostOrder.h"
#include "base/ProcessState.h"
#include "platform/Messages.h"
#include "tests/support/Blocks.h"
#include "tests/support/RandomBlock.h"

namespace zerbin::testing {
namespace {

// What a host learns of one block: the messages of its making, its members, and everything a
// project keeps of it after random values and after a restore of them into a second block.
struct Observed {
    std::string error;
    std::vector<std::string> messages;
    std::string members;
    Snapshot randomized;
    Snapshot restored;

    bool operator==(const Observed&) const = default;
};

void PrintTo(const Observed& o, std::ostream* out) {
    *out << "\n  error: " << o.error << "\n  messages: " << o.messages.size() << "\n  members:\n"
         << o.members << "  randomized:";
    PrintTo(o.randomized, out);
    *out << "\n  restored:";
    PrintTo(o.restored, out);
}

std::string MemberNames(CDBAppObject& block) {
    std::string names;
    for (const auto& attribute : AttributesOf(block)) {
        const auto type = attribute->IAttribute_SNVTType();
        names += "attribute " + attribute->IAttribute_Name() + " " +
                 (type ? type->ISNVType_ID() + " " + type->ISNVType_EnumDesc() : "-") + " " +
                 attribute->IAttribute_Description() + "\n";
    }
    if (const auto inputs = block.IAppObject_Inputs()) {
        for (const auto& input : inputs->IInputs_NewEnum()) {
            names += "input " + input->IInput_Name() + "\n";
        }
    }
    for (const auto& output : OutputsOf(block)) {
        names += "output " + output->IOutput_Name() + "\n";
    }
    return names;
}

Observed Observe(const std::string& type, const HostSetup& setup, uint32_t seed) {
    Observed observed;
    ScopedMessageRecorder messages;
    try {
        TestBlock block(type, setup);
        observed.members = MemberNames(*block);
        RandomValues values(seed);
        Randomize(*block, values);
        observed.randomized = Take(*block);
        TestBlock second(type, setup);
        second->IAppObject_XmlLoad(Save(*block).Element());
        observed.restored = Take(*second);
    } catch (const std::exception& error) {
        observed.error = error.what();
    }
    observed.messages = MessageTexts(messages);
    return observed;
}

// The library's setup, made again after each reset of the process.
HostSetup SetupOf(bool shipped) {
    if (!shipped) {
        return Fixtures("app_object", "snvt.xml");
    }
    UseLibrary(DataDir() / "library");
    return Shipped();
}

class WarmProcess : public ::testing::TestWithParam<bool> {};

TEST_P(WarmProcess, MakesTheSameBlocksAsAFreshOne) {
    const bool shipped = GetParam();
    const std::vector<std::string> types =
        TypesOf(shipped ? DataDir() / "library" : FixturesDir() / "app_object" / "library");
    ASSERT_FALSE(types.empty());
    uint32_t seed = 20261123u;
    for (const std::string& type : types) {
        SCOPED_TRACE(type);
        ++seed;
        ProcessState::Reset();
        const Observed fresh = Observe(type, SetupOf(shipped), seed);
        // The same process goes on: every other type made first, then this one twice.
        const HostSetup setup = SetupOf(shipped);
        for (const std::string& other : types) {
            Observe(other, setup, seed + 7);
        }
        EXPECT_EQ(Observe(type, setup, seed), fresh);
        EXPECT_EQ(Observe(type, setup, seed), fresh);
    }
}

INSTANTIATE_TEST_SUITE_P(Libraries, WarmProcess, ::testing::Bool(),
                         [](const auto& info) { return info.param ? "Shipped" : "Fixtures"; });

}  // namespace
}  // namespace zerbin::testing
