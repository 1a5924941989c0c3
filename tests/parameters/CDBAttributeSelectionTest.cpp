// Type and unit selectors: the connection check in the macro view, what a change of type or
// of unit sets off, and the derivation of unit-dependent attributes.
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "datatypes/CDBSNVTType.h"
#include "platform/Messages.h"
#include "tests/support/MacroDoubles.h"
#include "tests/support/ParameterTestSupport.h"
#include "tests/support/RecordingListener.h"

namespace zerbin::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Two blocks of type PrmTypes in a project: the source block's outputs may be connected to
// the sink block's inputs. The sink's In2 takes 108 only, its In1 follows its own selector.
class TypeSelectorTest : public ParameterTest {
protected:
    void SetUp() override {
        ParameterTest::SetUp();
        source_ = std::make_unique<TestBlock>("PrmTypes");
        sink_ = std::make_unique<TestBlock>("PrmTypes");
        (*source_)->IAppObject_GlobalKey("P\\Source");
        (*source_)->IAppObject_ExtendedKey("X\\Source");
        (*sink_)->IAppObject_GlobalKey("P\\Sink");
        type_ = source_->Attribute("Type");
        type_->IAttribute_CallBack(listener_);

        auto top = std::make_shared<FakeTopObject>();
        top->rootMacro = root_;
        auto host = FakeMacroHost::Holding(root_);
        host->topObject = top;
        (*source_)->IAppObject_Parent(host);
        inner_->members = {sink_->Object(), source_->Object()};
        root_->members = {std::make_shared<FakeMacro>(), inner_};
    }

    void Connect(const std::string& output, const std::string& input) {
        if (!inner_->connections) {
            inner_->connections.emplace();
        }
        inner_->connections->push_back(std::make_shared<FakeConnection>(
            (*source_)->IAppObject_Outputs()->IOutputs_Item(output),
            (*sink_)->IAppObject_Inputs()->IInputs_Item(input)));
    }
    std::shared_ptr<ICompatibleSNVTs> SinkTypes(const std::string& input) {
        return (*sink_)->IAppObject_Inputs()->IInputs_Item(input)->Iinput_SNVTCompatibles();
    }
    std::string OutputType(const std::string& output) {
        return (*source_)
            ->IAppObject_Outputs()
            ->IOutputs_Item(output)
            ->IOutput_SNVTType()
            ->ISNVType_ID();
    }

    std::unique_ptr<TestBlock> source_;
    std::unique_ptr<TestBlock> sink_;
    std::shared_ptr<CDBAttribute> type_;
    std::shared_ptr<FakeMacro> root_ = std::make_shared<FakeMacro>();
    std::shared_ptr<FakeMacro> inner_ = std::make_shared<FakeMacro>();
    std::shared_ptr<RecordingListener> listener_ = std::make_shared<RecordingListener>();
};

TEST_F(TypeSelectorTest, AnAcceptedChangeRetypesTheMembersAndTellsTheListenersTwice) {
    Connect("Out1", "In1");
    Connect("Out2", "In2");  // Out2 does not follow the selector, but every output is checked
    for (const char* input : {"In1", "In2"}) {
        SinkTypes(input)->ICompatibleSNVTs_Add("106");
    }
    ScopedMessageRecorder messages;
    auto interceptor = std::make_shared<RecordingInterceptor>();
    type_->IInterceptableAttribute_SetInterceptor(interceptor);

    type_->IAttribute_Value("105");  // the same value: nothing at all
    EXPECT_THAT(listener_->Lines(), IsEmpty());
    EXPECT_THAT(interceptor->calls, IsEmpty());

    type_->IAttribute_Value("106");
    ASSERT_THAT(messages.Messages(), IsEmpty());
    EXPECT_EQ(type_->IAttribute_Value(), "106");
    EXPECT_EQ(OutputType("Out1"), "106");
    EXPECT_EQ(OutputType("Out2"), "108");
    EXPECT_THAT(listener_->Lines(), ElementsAre("AttributeChanged(P\\Source\\ATT\\Type)",
                                                "AttributeChanged(P\\Source\\ATT\\Type)"));
    EXPECT_THAT(interceptor->calls, ElementsAre("AttributeValueChanged(Type)"));
}

TEST_F(TypeSelectorTest, AConnectionToAnInputThatDoesNotListTheTypeRefusesTheChange) {
    Connect("Out1", "In1");
    Connect("Out1", "In2");
    ScopedMessageRecorder messages;
    type_->IAttribute_Value("107");
    ASSERT_EQ(messages.Messages().size(), 1U);
    EXPECT_EQ(messages.Messages()[0].text,
              "Type selected (ID: 107), is not compatible with the object connections.\r\n"
              "Select a compatible type or remove the object connections.");
    EXPECT_EQ(messages.Messages()[0].title, "Warning: Incompatible type");
    EXPECT_EQ(messages.Messages()[0].icon, MessageIcon::Information);
    EXPECT_EQ(type_->IAttribute_Value(), "105");
    EXPECT_EQ(OutputType("Out1"), "105");
    EXPECT_THAT(listener_->Lines(), IsEmpty());

    type_->IAttribute_Value("108");  // In2 lists 108, In1 does not
    EXPECT_EQ(type_->IAttribute_Value(), "105");
    SinkTypes("In1")->ICompatibleSNVTs_Add("108");
    type_->IAttribute_Value("108");
    EXPECT_EQ(type_->IAttribute_Value(), "108");
}

TEST_F(ParameterTest, TheFirstUnitDerivesTheDependentsAtCreation) {
    auto factory = std::make_shared<RecordingEditorFactory>();
    SetEditorFactory(factory);
    TestBlock block("PrmUnits");
    auto converter = block->UnitsManager();
    auto supply = block.Attribute("Supply");
    EXPECT_EQ(supply->IAttribute_SNVTType()->ISNVType_ID(), "105");
    EXPECT_EQ(supply->IAttribute_Value(), "20.5");
    EXPECT_EQ(supply->IAttribute_Min(), "-10");
    EXPECT_EQ(supply->IAttribute_Max(), "90.5");
    EXPECT_NE(supply->Editor(), nullptr) << "made once the type is known";

    auto offset = block.Attribute("Offset");
    EXPECT_EQ(offset->IAttribute_SNVTType()->ISNVType_ID(), "120") << "differential";
    // The converter is asked about the selector's default, whatever type the unit gives.
    EXPECT_EQ(offset->IAttribute_DefaultValue(), NormalizeDecimal(converter->DefaultFor("105")));
    EXPECT_EQ(offset->IAttribute_Min(), NormalizeDecimal(converter->MinimumFor("105")));
}

// Without short floats the Float of the second unit takes four bytes where the layout gave two.
TEST_F(ParameterTest, AUnitThatWouldOutgrowAPlaceIsRefused) {
    TestBlock block("PrmUnits");
    const std::string before = block->IAppObject_Stream();
    ScopedMessageRecorder messages;
    block.Attribute("Units")->IAttribute_Value("122");
    ASSERT_EQ(messages.Messages().size(), 1U);
    EXPECT_EQ(messages.Messages()[0].text,
              "Unit selected (ID: 122) does not fit the place of Supply in the CDB.\r\n"
              "The unit is not changed.");
    EXPECT_EQ(block.Attribute("Units")->IAttribute_Value(), "105");
    EXPECT_EQ(block->IAppObject_Stream(), before);
}

// A dependent that keeps the standard float has four bytes in every unit: any unit fits.
TEST_F(ParameterTest, AStandardFloatFitsItsPlaceInEveryUnit) {
    TestBlock block("PrmKeep");
    ScopedMessageRecorder messages;
    block.Attribute("Units")->IAttribute_Value("122");
    EXPECT_TRUE(messages.Messages().empty());
    EXPECT_EQ(block.Attribute("Units")->IAttribute_Value(), "122");
    EXPECT_EQ(block->IAppObject_CDBDimension(), 8);
}

TEST_F(ParameterTest, AChangeOfUnitRederivesEachDependentAndTellsItsOwnListeners) {
    // Short floats, so that the Float of the second unit fits the place of the first's type.
    TestBlock block("PrmUnits", WithShortFloat(true));
    block->IAppObject_GlobalKey("K");
    auto journal = std::make_shared<CallJournal>();
    block->IAppObject_CallBack(std::make_shared<RecordingListener>("host", journal));
    auto interceptor = std::make_shared<RecordingInterceptor>();
    auto units = block.Attribute("Units");
    units->IInterceptableAttribute_SetInterceptor(interceptor);
    auto converter = block->UnitsManager();
    auto supply = block.Attribute("Supply");
    auto offset = block.Attribute("Offset");

    units->IAttribute_Value("122");
    EXPECT_EQ(supply->IAttribute_SNVTType()->ISNVType_ID(), "122");
    EXPECT_EQ(supply->IAttribute_SNVTType()->ISNVType_GenType(), "Float");
    EXPECT_EQ(supply->IAttribute_SNVTType()->ISNVType_Length(), 2) << "a managed short float";
    EXPECT_EQ(supply->IAttribute_Value(), "68");
    EXPECT_EQ(supply->IAttribute_Min(), NormalizeDecimal(converter->MinimumFor("122")));
    EXPECT_EQ(offset->IAttribute_SNVTType()->ISNVType_ID(), "123");
    EXPECT_EQ(offset->IAttribute_Value(), NormalizeDecimal(converter->DefaultFor("122")));
    EXPECT_EQ(block.Attribute("Delay")->IAttribute_Value(), "7");
    EXPECT_THAT(journal->Lines(), ElementsAre("host AttributeChanged(K\\ATT\\Supply)",
                                              "host AttributeChanged(K\\ATT\\Offset)",
                                              "host AttributeChanged(K\\ATT\\Units)"));
    EXPECT_THAT(interceptor->calls,
                ElementsAre("DependentAttributeChanged(Supply)",
                            "DependentAttributeChanged(Offset)", "AttributeValueChanged(Units)"));
    units->IAttribute_BackToDefault();
    EXPECT_EQ(supply->IAttribute_SNVTType()->ISNVType_ID(), "105");
    EXPECT_EQ(supply->IAttribute_Value(), "20.5");

    units->IAttribute_Value("124");
    EXPECT_EQ(offset->IAttribute_SNVTType()->ISNVType_ID(), "124") << "Kelvin has no differential";

    // A value that no unit has leaves the dependents exactly as they are.
    journal->Clear();
    units->IAttribute_Value("999");
    EXPECT_EQ(units->IAttribute_Value(), "999");
    EXPECT_EQ(offset->IAttribute_SNVTType()->ISNVType_ID(), "124");
    EXPECT_THAT(journal->Lines(), ElementsAre("host AttributeChanged(K\\ATT\\Units)"));
}

// Blocks of one type share what a change of unit derived; each still hears every message.
TEST_F(ParameterTest, ALaterBlockDerivesWhatTheFirstDidAndHearsTheSameMessages) {
    struct Derived {
        std::string id, min, max, recordMax, value, defaultValue, image;
        int32_t length;
        bool operator==(const Derived&) const = default;
    };
    const auto change = [](TestBlock& block) {
        auto supply = block.Attribute("Supply");
        supply->Type();  // handed out before: the record the change brings must be shared again
        // A host's listener that fails does not stop the change, shared or derived anew.
        auto failing = std::make_shared<RecordingListener>("failing");
        failing->OnCall([] { throw Error("the host's listener failed"); });
        supply->IAttribute_CallBack(failing);
        block.Attribute("Units")->IAttribute_Value("122");
        auto record = supply->IAttribute_SNVTType();
        Derived derived{record->ISNVType_ID(),      supply->IAttribute_Min(),
                        supply->IAttribute_Max(),   record->ISNVType_Max(),
                        supply->IAttribute_Value(), supply->IAttribute_DefaultValue(),
                        block->IAppObject_Stream(), record->ISNVType_Length()};
        // A record handed out may be changed; the next block must not see it.
        supply->Type()->SetMax("1");
        return derived;
    };
    std::vector<Derived> derived;
    for (int i = 0; i < 3; ++i) {
        TestBlock block("PrmUnits", WithShortFloat(true));
        derived.push_back(change(block));
    }
    EXPECT_EQ(derived[1], derived[0]);
    EXPECT_EQ(derived[2], derived[0]);
    EXPECT_NE(derived[0].min, "-10") << "Fahrenheit's own limit, not Celsius's";

    const auto messagesOfUnknownUnit = [this](TestBlock& block, const std::string& name) {
        ScopedMessageRecorder messages;
        Load(block, "<" + name + "><UNITS><Bogus>9999</Bogus></UNITS></" + name + ">")
            ->IAttribute_Value("9999");
        return messages.Messages().size();
    };
    TestBlock third("PrmUnits");
    TestBlock fourth("PrmUnits");
    const std::size_t firstTime = messagesOfUnknownUnit(third, "One");
    EXPECT_GT(firstTime, 0U);
    EXPECT_EQ(messagesOfUnknownUnit(fourth, "Two"), firstTime);
}

TEST_F(ParameterTest, OfSeveralUnitsOfTheSelectedTypeTheLastOneCounts) {
    TestBlock block("PrmUnits");
    auto selector = Load(
        block, "<Other><UNITS><Fahrenheit>105</Fahrenheit><Celsius>105</Celsius></UNITS></Other>");
    selector->IAttribute_Value("105");
    auto supply = block.Attribute("Supply");
    EXPECT_EQ(supply->IAttribute_Value(), "20.5") << "the default of Celsius, not of Fahrenheit";
    EXPECT_EQ(supply->IAttribute_SNVTType()->ISNVType_ID(), "105");
}

}  // namespace
}  // namespace zerbin::testing
