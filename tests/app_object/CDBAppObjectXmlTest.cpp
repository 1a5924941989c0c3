// The block's subtree in project XML and in the lean form of other tools: the exact text
// written, the reader's leniency, and save then load giving back the same block.
#include <gmock/gmock.h>

#include <limits>

#include "app_object/CDBAppObject.h"
#include "base/Xml.h"
#include "tests/support/Blocks.h"
#include "tests/support/RandomBlock.h"

namespace zerbin {
namespace {

using testing::Fixtures;
using ::testing::IsEmpty;
using testing::MessageTexts;
using testing::TestBlock;
using testing::XmlText;

const char* const kWorkedAttributes =
    "<Attributes><Setpoint>100</Setpoint><Mode>3</Mode><Gain>1.5</Gain><Trim>20.5</Trim>"
    "<Note>memo</Note></Attributes>";

TestBlock WorkedFan() {
    TestBlock block("Worked", Fixtures("app_object", "snvt.xml"));
    block->IAppObject_UserName("Fan 1");
    block->IAppObject_XPosition(120.5);
    block->IAppObject_YPosition(80);
    block->IAppObject_Outputs()->IOutputs_Item("Out1")->IOutput_IsDisplayable(true);
    return block;
}

std::string Saved(CDBAppObject& block) {
    pugi::xml_document project;
    pugi::xml_node blocks = project.append_child("Blocks");
    block.IAppObject_XmlSave(blocks, project);
    return XmlText(blocks.first_child());
}

// Loads the block element of an XML text into the block.
void Load(CDBAppObject& block, const std::string& text) {
    auto document = testing::ParseXml(text);
    ASSERT_TRUE(document);
    block.IAppObject_XmlLoad(document->document_element());
}

TEST(ProjectXml, SaveWritesTheBlockSubtree) {
    TestBlock block = WorkedFan();

    EXPECT_EQ(Saved(*block), std::string("<Worked><UserName>Fan 1</UserName>"
                                         "<X_Position>120.5</X_Position><Y_Position>80</Y_Position>"
                                         "<CDB></CDB>") +
                                 kWorkedAttributes +
                                 "<Outputs><Out1 IsDisplayable=\"1\"/></Outputs></Worked>");

    const std::string image = block->IAppObject_Stream();
    EXPECT_NE(Saved(*block).find("<CDB>" + image + "</CDB>"), std::string::npos);
}

TEST(ProjectXml, AValueThatLooksLikeTheNoTextMarkerIsWrittenAsText) {
    const HostSetup fixtures = Fixtures("app_object", "snvt.xml");
    TestBlock block("OnlyOutputs", fixtures);
    block->IAppObject_UserName("NoTextField");

    EXPECT_NE(Saved(*block).find("<UserName>NoTextField</UserName>"), std::string::npos);
}

TEST(LeanXml, BothFormsWriteTheKeyAndNoCanvasOrImage) {
    TestBlock block = WorkedFan();
    block->IAppObject_Stream();

    pugi::xml_document document;
    pugi::xml_node sim = document.append_child("Sim");
    pugi::xml_node interop = document.append_child("Interop");
    block->IAppObject_XMLSaveSim(sim, document);
    block->IAppObject_ExtendedKey("E\\7");
    block->IAppObject_XMLSaveForInteroperability(interop, document);

    const auto lean = [](const std::string& key) {
        return "<Worked><UserName>Fan 1</UserName><Key>" + key + "</Key>" + kWorkedAttributes +
               "<Outputs><Out1 IsDisplayable=\"1\"/></Outputs></Worked>";
    };
    EXPECT_EQ(XmlText(sim.first_child()), lean(""));
    EXPECT_EQ(XmlText(interop.first_child()), lean("E\\7"));
}

TEST(ProjectXmlLoad, TheImageIsRebuiltFromTheRestoredValues) {
    const HostSetup fixtures = Fixtures("app_object", "snvt.xml");
    TestBlock block("Worked", fixtures);

    Load(*block, "<B><CDB>FFFF</CDB><Attributes><Mode>1</Mode></Attributes></B>");

    EXPECT_EQ(block->LastStream(), "FFFF");
    EXPECT_EQ(block->IAppObject_Stream(), "11012C014E203FC0000008020000000000");
}

TEST(ProjectXmlLoad, PositionsReadEitherSeparator) {
    const struct {
        const char* text;
        double expected;  // the position before the load is 7
    } rows[] = {
        {"120,5", 120.5},
        {"abc", 0},
        {"12abc", 12},
        // No infinity: an overflow keeps the value, an underflow gives 0.
        {"1E400", 7},
        {"1E-99999999999999999999", 0},
        {"64.5D-11111111111111111111111", 0},
    };
    for (const auto& row : rows) {
        auto block = std::make_shared<CDBAppObject>();
        block->IAppObject_XPosition(7);
        block->IAppObject_YPosition(7);
        Load(*block, std::string("<B><X_Position>") + row.text + "</X_Position><Y_Position>" +
                         row.text + "</Y_Position></B>");
        EXPECT_EQ(block->IAppObject_XPosition(), row.expected) << row.text;
        EXPECT_EQ(block->IAppObject_YPosition(), row.expected) << row.text;
    }
}

TEST(ProjectXml, EveryPositionReadsBackAsTheSameNumber) {
    const double positions[] = {120.5,
                                0.1,
                                -3.0000000000000004,
                                1e-300,
                                std::numeric_limits<double>::max(),
                                -std::numeric_limits<double>::max(),
                                std::numeric_limits<double>::denorm_min()};
    for (const bool comma : {false, true}) {
        ZERBIN_SEPARATOR_FOR(comma, locale);
        for (const double position : positions) {
            TestBlock block = WorkedFan();
            block->IAppObject_XPosition(position);
            auto reopened = std::make_shared<CDBAppObject>();
            Load(*reopened, Saved(*block));
            EXPECT_EQ(reopened->IAppObject_XPosition(), position) << Saved(*block);
            EXPECT_EQ(reopened->IAppObject_YPosition(), 80);
        }
    }
}

// Saved to text and read back, as a project file is.
TestBlock Reopened(CDBAppObject& block, const std::string& type) {
    std::ostringstream text;
    testing::Save(block).document->save(text);
    const auto document = testing::ParseXml(text.str());
    TestBlock reopened(type, Fixtures("app_object", "snvt.xml"));
    reopened->IAppObject_XmlLoad(document->document_element().first_child());
    return reopened;
}

std::string InputTypes(CDBAppObject& block) {
    std::string types;
    for (const auto& input : block.IAppObject_Inputs()->IInputs_NewEnum()) {
        types +=
            input->Iinput_SNVTCompatibles()->ICompatibleSNVTs_Item(1)->ICompatibleSNVT_ID() + " ";
    }
    return types;
}

TEST(ProjectXmlReopen, GivesTheSameValuesImageAndTypes) {
    const HostSetup fixtures = Fixtures("app_object", "snvt.xml");
    ScopedMessageRecorder messages;
    const struct {
        const char* attribute;
        const char* value;
    } rows[] = {
        {nullptr, nullptr},  // as created: the selectors stand at their defaults
        {"Temp", "25.5"},    // a dependent saved before its selector
        {"Pair", ""},        // an empty structure: its fields must empty as well
        {"Pair", " 1"},      // an empty first field
        {"Pair", "7"},       // a single token
        {"Note", "  "},      // only blanks
        {"Note", "\t a \t"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.attribute ? std::string(row.attribute) + "=" + row.value : "defaults");
        TestBlock block("Reopen", fixtures);
        if (row.attribute != nullptr) {
            block->IAppObject_Attributes()
                ->IAttributes_Item(row.attribute)
                ->IAttribute_Value(row.value);
        }
        const testing::Snapshot before = testing::Take(*block);
        TestBlock reopened = Reopened(*block, "Reopen");
        EXPECT_EQ(testing::Take(*reopened), before);
        EXPECT_EQ(InputTypes(*reopened), InputTypes(*block));
    }
    EXPECT_THAT(MessageTexts(messages), IsEmpty());
}

// What the type does not define (no longer, or no type at all) goes back into the project as
// it came, and the user hears of it once for the type.
TEST(ProjectXmlReopen, KeepsWhatTheTypeDoesNotDefine) {
    const HostSetup fixtures = Fixtures("app_object", "snvt.xml");
    const std::string entry =
        "<Attributes><Gone a=\"1\">7<Sub/></Gone><Note>kept</Note></Attributes>"
        "<Outputs><Old IsDisplayable=\"1\"/></Outputs><Extra>x</Extra>";
    const struct {
        const char* type;
        std::vector<std::string> kept;
    } rows[] = {
        {"Reopen", {"Extra", "Attributes/Gone", "Outputs/Old"}},
        {"NoSuchType", {"Extra", "Attributes/Gone", "Attributes/Note", "Outputs/Old"}},
    };
    for (const auto& row : rows) {
        ScopedMessageRecorder messages;
        for (int copy = 0; copy < 2; ++copy) {
            TestBlock block(row.type, fixtures);
            Load(*block, "<B>" + entry + "</B>");
            EXPECT_EQ(block->KeptProjectEntries(), row.kept) << row.type;
            const std::string saved = Saved(*block);
            for (const char* part : {"<Gone a=\"1\">7<Sub/></Gone>", "<Old IsDisplayable=\"1\"/>",
                                     "<Extra>x</Extra>"}) {
                EXPECT_NE(saved.find(part), std::string::npos) << row.type << ": " << part;
            }
        }
        int told = 0;
        for (const std::string& text : MessageTexts(messages)) {
            told += text.find("they are kept and saved back unchanged") != std::string::npos;
        }
        EXPECT_EQ(told, 1) << row.type;
    }
}

}  // namespace
}  // namespace zerbin
