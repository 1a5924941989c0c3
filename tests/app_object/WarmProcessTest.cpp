// A block made in a process that has already made blocks of its type, with every store, index
// and cache warm, against the first block of the type in a process started afresh: for every
// shipped type and every fixture type, the same members, messages, image and project XML,
// under random values and after a restore.
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
#include "platform/Files.h"
#include "platform/Messages.h"
#include "tests/support/RandomBlock.h"

namespace zerbin {
namespace {

namespace fs = std::filesystem;

struct Library {
    const char* name;
    fs::path folder;
    fs::path dictionary;
    fs::path device;  // empty: no owner device
};

const Library kLibraries[] = {
    {"Shipped", fs::path(ZERBIN_DATA_DIR) / "library", fs::path(ZERBIN_DATA_DIR) / "snvts.xml",
     fs::path(ZERBIN_DATA_DIR) / "devices" / "Controller.xml"},
    {"Fixtures",
     fs::path(ZERBIN_FIXTURES_DIR) / "app_object" / "library",
     fs::path(ZERBIN_FIXTURES_DIR) / "app_object" / "snvt.xml",
     {}},
};

// What a host learns of one block: the messages of its making, its members, and everything a
// project keeps of it after random values and after a restore of them into a second block.
struct Observed {
    std::string error;
    std::vector<std::string> messages;
    std::string members;
    testing::Snapshot randomized;
    testing::Snapshot restored;

    bool operator==(const Observed&) const = default;
};

void PrintTo(const Observed& o, std::ostream* out) {
    *out << "\n  error: " << o.error << "\n  messages:";
    for (const std::string& message : o.messages) {
        *out << " [" << message << "]";
    }
    *out << "\n  members:\n" << o.members << "  randomized:";
    testing::PrintTo(o.randomized, out);
    *out << "\n  restored:";
    testing::PrintTo(o.restored, out);
}

std::string MemberNames(CDBAppObject& block) {
    std::string names;
    for (const auto& attribute : testing::AttributesOf(block)) {
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
    for (const auto& output : testing::OutputsOf(block)) {
        names += "output " + output->IOutput_Name() + "\n";
    }
    return names;
}

// The process as a host sets it up: the library, the documents, a message recorder.
class Host {
public:
    explicit Host(const Library& library)
        : dictionary_(xml::LoadFile(library.dictionary, nullptr)),
          device_(library.device.empty() ? nullptr : xml::LoadFile(library.device, nullptr)) {
        SetComponentFolder(library.folder / "component");
    }
    ~Host() { SetComponentFolder({}); }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    Observed Observe(const std::string& type, uint32_t seed) {
        Observed observed;
        ScopedMessageRecorder messages;
        std::shared_ptr<CDBAppObject> block;
        std::shared_ptr<CDBAppObject> second;
        try {
            block = NewBlock(type, {dictionary_, device_, false, {}, {}, {}});
            observed.members = MemberNames(*block);
            testing::RandomValues values(seed);
            testing::Randomize(*block, values);
            observed.randomized = testing::Take(*block);
            second = NewBlock(type, {dictionary_, device_, false, {}, {}, {}});
            second->IAppObject_XmlLoad(testing::Save(*block).Element());
            observed.restored = testing::Take(*second);
        } catch (const std::exception& error) {
            observed.error = error.what();
        }
        for (const auto& made : {block, second}) {
            if (made) {
                made->IAppObject_Destroy();
            }
        }
        observed.messages = testing::MessageTexts(messages);
        return observed;
    }

private:
    std::shared_ptr<const pugi::xml_document> dictionary_;
    std::shared_ptr<const pugi::xml_document> device_;
};

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

class WarmProcess : public ::testing::TestWithParam<Library> {
protected:
    void TearDown() override { ProcessState::Reset(); }
};

TEST_P(WarmProcess, MakesTheSameBlocksAsAFreshOne) {
    const Library& library = GetParam();
    const std::vector<std::string> types = TypesOf(library.folder);
    ASSERT_FALSE(types.empty());
    uint32_t seed = 20261123u;
    for (const std::string& type : types) {
        SCOPED_TRACE(type);
        ++seed;
        ProcessState::Reset();
        Observed fresh;
        {
            Host host(library);
            fresh = host.Observe(type, seed);
        }
        // The same process goes on: every other type made first, then this one twice.
        Host host(library);
        for (const std::string& other : types) {
            host.Observe(other, seed + 7);
        }
        EXPECT_EQ(host.Observe(type, seed), fresh);
        EXPECT_EQ(host.Observe(type, seed), fresh);
    }
}

INSTANTIATE_TEST_SUITE_P(Libraries, WarmProcess, ::testing::ValuesIn(kLibraries),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace zerbin
