// The two collections of references share their shape: building from the definition, lookup,
// key propagation. Both run through the same typed tests; what only inputs have follows.
#include "connections/CDBInputs.h"

#include <gmock/gmock.h>

#include "connections/CDBOutputs.h"
#include "interfaces/Error.h"
#include "tests/support/FakeAppObject.h"
#include "tests/support/TestSupport.h"

namespace zerbin {
namespace {

using ::testing::ElementsAre;
using namespace zerbin::testing;

// What the typed tests need to know of each collection.
struct InputsTraits {
    using Collection = CDBInputs;
    static std::string Name(const auto& m) { return m->IInput_Name(); }
    static int32_t Index(const auto& m) { return m->IInput_Index(); }
    static auto Parent(const auto& m) { return m->Iinput_Parent(); }
    static std::string GlobalKey(const auto& m) { return m->IInput_GlobalKey(); }
    static std::string ExtendedKey(const auto& m) { return m->IInput_ExtendedKey(); }
    static auto Item(CDBInputs& c, const std::string& key) { return c.IInputs_Item(key); }
    static int32_t Count(CDBInputs& c) { return c.IInputs_Count(); }
    static auto NewEnum(CDBInputs& c) { return c.IInputs_NewEnum(); }
    static std::string GlobalKey(CDBInputs& c) { return c.IInputs_GlobalKey(); }
    static std::string ExtendedKey(CDBInputs& c) { return c.IInputs_ExtendedKey(); }
};

struct OutputsTraits {
    using Collection = CDBOutputs;
    static std::string Name(const auto& m) { return m->IOutput_Name(); }
    static int32_t Index(const auto& m) { return m->IOutput_Index(); }
    static auto Parent(const auto& m) { return m->IOutput_Parent(); }
    static std::string GlobalKey(const auto& m) { return m->IOutput_GlobalKey(); }
    static std::string ExtendedKey(const auto& m) { return m->IOutput_ExtendedKey(); }
    static auto Item(CDBOutputs& c, const std::string& key) { return c.IOutputs_Item(key); }
    static int32_t Count(CDBOutputs& c) { return c.IOutputs_Count(); }
    static auto NewEnum(CDBOutputs& c) { return c.IOutputs_NewEnum(); }
    static std::string GlobalKey(CDBOutputs& c) { return c.IOutputs_GlobalKey(); }
    static std::string ExtendedKey(CDBOutputs& c) { return c.IOutputs_ExtendedKey(); }
};

template <class Traits>
class ReferenceCollectionTest : public ::testing::Test {
protected:
    ReferenceCollectionTest() { block->name = "Loop"; }

    // Adds a member from "<E>inner</E>" under the name; a name need not be an XML name.
    auto Add(const std::string& name, const std::string& inner = {}) {
        elements.push_back(ParseElement("<E>" + inner + "</E>"));
        return collection.AddFromDefinition(name, elements.back().node, block);
    }

    std::vector<std::string> Names() {
        std::vector<std::string> names;
        for (const auto& member : Traits::NewEnum(collection)) {
            names.push_back(Traits::Name(member));
        }
        return names;
    }

    ScopedMessageRecorder messages;
    std::shared_ptr<FakeAppObject> block = std::make_shared<FakeAppObject>();
    typename Traits::Collection collection;
    std::vector<DefinitionElement> elements;
};

using CollectionKinds = ::testing::Types<InputsTraits, OutputsTraits>;
TYPED_TEST_SUITE(ReferenceCollectionTest, CollectionKinds);

TYPED_TEST(ReferenceCollectionTest, MembersAreAddedInOrderWithTheirIndexAndParent) {
    EXPECT_EQ(TypeParam::Count(this->collection), 0);
    EXPECT_EQ(this->collection.MaxNameLength(), 0);
    auto first = this->Add("Flow");
    auto second = this->Add("Setpoint");
    EXPECT_THAT(this->Names(), ElementsAre("Flow", "Setpoint"));
    EXPECT_EQ(TypeParam::Index(first), 0);
    EXPECT_EQ(TypeParam::Index(second), 1);
    EXPECT_EQ(TypeParam::Parent(second), this->block);
    EXPECT_EQ(this->collection.Members().at(1), second);
}

TYPED_TEST(ReferenceCollectionTest, MaxNameLengthCountsCharactersAndNeverFalls) {
    this->Add("Temp\xC3\xA9rature");  // 11 characters in 12 bytes
    EXPECT_EQ(this->collection.MaxNameLength(), 11);
    this->Add("A");
    EXPECT_EQ(this->collection.MaxNameLength(), 11);
    this->Add("Acceleration");
    EXPECT_EQ(this->collection.MaxNameLength(), 12);
}

TYPED_TEST(ReferenceCollectionTest, ADuplicateNameInAnyCaseRaisesAndKeepsTheFirst) {
    auto first = this->Add("Flow");
    EXPECT_THROW(this->Add("FLOW"), Error);
    EXPECT_EQ(TypeParam::Count(this->collection), 1);
    EXPECT_EQ(TypeParam::Item(this->collection, "flow"), first);
    EXPECT_EQ(TypeParam::Item(this->collection, "1"), first);  // the rest is KeyedCollection's
    // The next member still takes the next free index.
    EXPECT_EQ(TypeParam::Index(this->Add("Other")), 1);
    EXPECT_EQ(this->collection.MaxNameLength(), 5);
}

TYPED_TEST(ReferenceCollectionTest, ABadDefinitionRaisesAndAddsNothing) {
    this->Add("Flow");
    EXPECT_THROW(this->Add("Broken", "<VISIBLE/>"), Error);
    EXPECT_THAT(this->Names(), ElementsAre("Flow"));
    EXPECT_EQ(this->collection.MaxNameLength(), 4);
    EXPECT_EQ(TypeParam::Index(this->Add("Next")), 1);
}

TYPED_TEST(ReferenceCollectionTest, KeysReachEveryMemberBehindABackslashAndItsName) {
    auto flow = this->Add("Flow");
    auto setpoint = this->Add("Setpoint");
    this->collection.PropagateGlobalKey(std::make_shared<const std::string>("K"), "\\RIN");
    this->collection.PropagateExtendedKey(std::make_shared<const std::string>("E"), "\\RIN");
    EXPECT_EQ(TypeParam::GlobalKey(this->collection), "K\\RIN");
    EXPECT_EQ(TypeParam::ExtendedKey(this->collection), "E\\RIN");
    EXPECT_EQ(TypeParam::GlobalKey(flow), "K\\RIN\\Flow");
    EXPECT_EQ(TypeParam::ExtendedKey(setpoint), "E\\RIN\\Setpoint");

    // A later key replaces the earlier one; each key space keeps its own.
    this->collection.PropagateGlobalKey(std::make_shared<const std::string>("K2"), "");
    EXPECT_EQ(TypeParam::GlobalKey(setpoint), "K2\\Setpoint");
    EXPECT_EQ(TypeParam::ExtendedKey(setpoint), "E\\RIN\\Setpoint");
}

TEST(Inputs, DestroyCutsTheWayBackToTheBlockAndKeepsTheMembers) {
    auto block = std::make_shared<FakeAppObject>();
    CDBInputs inputs;
    auto element = ParseElement("<In/>");
    auto input = inputs.AddFromDefinition("In", element.node, block);
    const long before = block.use_count();
    inputs.Destroy();
    EXPECT_EQ(input->Iinput_Parent(), nullptr);
    EXPECT_EQ(block.use_count(), before - 1);
    EXPECT_EQ(inputs.IInputs_Count(), 1);
    EXPECT_EQ(inputs.IInputs_Item("In"), input);
}

}  // namespace
}  // namespace zerbin
