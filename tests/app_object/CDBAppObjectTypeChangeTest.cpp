// A block type that changes under a saved project: the stamp a host records, what a load under
// an older stamp takes and keeps, what a save then writes, and the update to the library's
// type. The library changes as it would between two runs of a host.
#include <gmock/gmock.h>

#include "app_object/CDBAppObject.h"
#include "app_object/TypeStamp.h"
#include "base/ProcessState.h"
#include "tests/support/Blocks.h"

namespace zerbin {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::Not;
using testing::TempLibrary;
using testing::TestBlock;
using testing::XmlText;

// Version 1 of type T; version 2 narrows Level, drops Old and the output OutOld, adds New.
std::string Definition(bool second) {
    const auto member = [](const std::string& name, int order, const std::string& type,
                           const std::string& value, const std::string& more) {
        return "<" + name + "><CDBORDERINPOSITION>" + std::to_string(order) +
               "</CDBORDERINPOSITION><SNVTTYPE>" + type + "</SNVTTYPE><DefaultValue>" + value +
               "</DefaultValue>" + more + "</" + name + ">";
    };
    return "<AppObject><NAME>T</NAME><ID>7</ID><OutReferences>"
           "<Out1><SNVTTYPE>902</SNVTTYPE></Out1>" +
           std::string(second ? "" : "<OutOld><SNVTTYPE>902</SNVTTYPE></OutOld>") +
           "</OutReferences><Attributes>" + member("Mode", 1, "901", "3", "") +
           member("Level", 2, "902", "10", second ? "<Max>50</Max>" : "<Max>300</Max>") +
           (second ? member("New", 3, "902", "7", "") : member("Old", 3, "902", "1", "")) +
           "</Attributes></AppObject>";
}

void WriteLibrary(const TempLibrary& library, bool second) {
    library.WriteFile("library.xml", std::string("<LIBRARY><VERSION>") + (second ? "1.1" : "1.0") +
                                         "</VERSION></LIBRARY>");
    library.WriteDefinition("T", Definition(second));
}

std::string Saved(CDBAppObject& block) {
    pugi::xml_document project;
    pugi::xml_node root = project.append_child("Project");
    block.IAppObject_XmlSave(root, project);
    return XmlText(root.first_child());
}

TEST(TypeChange, ALoadAfterTheLibraryChangedTakesWhatFitsKeepsTheRestAndUpdatesOnRequest) {
    TempLibrary library;
    WriteLibrary(library, false);
    const HostSetup setup = testing::Fixtures("app_object", "snvt.xml");
    testing::UseLibrary(library.Folder());
    pugi::xml_document project;
    pugi::xml_node element;
    std::string stamp;
    {
        TestBlock block("T", setup);
        block->IAppObject_Attributes()->IAttributes_Item("Mode")->IAttribute_Value("1");
        block->IAppObject_Attributes()->IAttributes_Item("Level")->IAttribute_Value("90");
        block->IAppObject_Attributes()->IAttributes_Item("Old")->IAttribute_Value("5");
        block->IAppObject_Outputs()->IOutputs_Item("OutOld")->IOutput_IsDisplayable(true);
        block->IAppObject_XmlSave(project.append_child("Project"), project);
        stamp = block->ITypeChange_Stamp();
        element = project.first_child().first_child();
        element.append_attribute(kTypeStampAttribute) = stamp.c_str();
    }
    EXPECT_THAT(stamp, MatchesRegex("[0-9a-f]{8}@1\\.0"));

    // The host starts again over the library's next version.
    ProcessState::Reset();
    testing::UseLibrary(library.Folder());
    WriteLibrary(library, true);
    ScopedMessageRecorder messages;
    TestBlock kept("T", setup);
    TestBlock updated("T", setup);
    kept->IAppObject_XmlLoad(element);
    updated->IAppObject_XmlLoad(element);

    ASSERT_TRUE(kept->ITypeChange_IsChanged());
    const std::string now = kept->ChangedType()->currentStamp;
    EXPECT_THAT(now, MatchesRegex("[0-9a-f]{8}@1\\.1"));
    EXPECT_NE(now.substr(0, 8), stamp.substr(0, 8));
    EXPECT_THAT(kept->ITypeChange_Changes(),
                ElementsAre("type changed: saved as " + stamp + ", now " + now,
                            "Level '90' kept: 90 is outside the limits 0 to 50",
                            "Old '5' kept: the type has no such parameter",
                            "output OutOld kept: the type has no such output", "New new: '7'"));
    EXPECT_EQ(kept.Attribute("Mode")->IAttribute_Value(), "1");
    EXPECT_EQ(kept.Attribute("Level")->IAttribute_Value(), "10");
    // Told once for the type, not once for each block.
    EXPECT_THAT(testing::MessageTexts(messages),
                ElementsAre("T: the block type has changed since the project was saved; what it "
                            "no longer takes is kept and saved back unchanged (Attributes/Level, "
                            "Attributes/Old, Outputs/OutOld)."));

    // Saved, the block gives back what it did not take, under the stamp it was saved with; a
    // value the user gives the parameter replaces the one kept.
    EXPECT_EQ(kept->ITypeChange_Stamp(), stamp);
    const std::string saved = Saved(*kept);
    EXPECT_THAT(saved, HasSubstr("<Mode>1</Mode><Level>90</Level><New>7</New><Old>5</Old>"));
    EXPECT_THAT(saved, HasSubstr("<OutOld IsDisplayable=\"1\"/>"));
    kept.Attribute("Level")->IAttribute_Value("40");
    EXPECT_THAT(Saved(*kept), HasSubstr("<Level>40</Level><New>7</New><Old>5</Old>"));

    EXPECT_THAT(updated->ITypeChange_Update(),
                ElementsAre("Level '90': 90 is outside the limits 0 to 50",
                            "Old '5': the type has no such parameter",
                            "output OutOld: the type has no such output"));
    EXPECT_FALSE(updated->ITypeChange_IsChanged());
    EXPECT_EQ(updated->ITypeChange_Stamp(), now);
    EXPECT_THAT(Saved(*updated), Not(HasSubstr("Old")));
    EXPECT_THAT(Saved(*updated), HasSubstr("<Level>10</Level>"));

    // Under the type's own stamp a load takes every value as saved, as a load always has.
    element.attribute(kTypeStampAttribute).set_value(now.c_str());
    TestBlock current("T", setup);
    current->IAppObject_XmlLoad(element);
    EXPECT_EQ(current->ChangedType()->savedStamp, "");  // only Old and OutOld show the change
    EXPECT_EQ(current.Attribute("Level")->IAttribute_Value(), "90");
}

TEST(TypeChange, TheDefinitionHashFollowsContentNotLayout) {
    const struct {
        const char* a;
        const char* b;
        bool same;
    } rows[] = {
        {"<A><B x='1'>t</B></A>", "<!-- note -->\n<A>\n  <B x=\"1\">t</B>\n</A>", true},
        {"<A><B>t</B></A>", "<A><B>u</B></A>", false},
        {"<A><B x='1'/></A>", "<A><B x='2'/></A>", false},
        {"<A><B><C/></B><D/></A>", "<A><B><C/><D/></B></A>", false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.b);
        const auto a = testing::ParseXml(row.a);
        const auto b = testing::ParseXml(row.b);
        EXPECT_THAT(DefinitionHash(*a), MatchesRegex("[0-9a-f]{8}"));
        EXPECT_EQ(DefinitionHash(*a) == DefinitionHash(*b), row.same);
    }
}

}  // namespace
}  // namespace zerbin
