// Definitions written by others, at their worst: nested beyond any call stack, with member
// names that are no XML names, and type names that try to reach outside the block library.
// Each ends with a defined outcome and leaves the host running.

#include "base/ProcessState.h"
#include "interfaces/Error.h"
#include "platform/DefinitionStore.h"
#include "tests/support/Blocks.h"
#include "tests/support/RandomBlock.h"

namespace zerbin::testing {
namespace {

constexpr int kDeep = 100000;

// n elements, each inside the one before.
std::string Nest(int depth, const std::string& inner = "x") {
    std::string text;
    text.reserve(static_cast<std::size_t>(depth) * 7 + inner.size());
    for (int i = 0; i < depth; ++i) {
        text += "<n>";
    }
    text += inner;
    for (int i = 0; i < depth; ++i) {
        text += "</n>";
    }
    return text;
}

// A block with one attribute, one input and one output; the pieces can be swapped for
// hostile ones.
std::string Definition(const std::string& nameElement = "<NAME>Deep</NAME>",
                       const std::string& attributeExtra = "") {
    return "<AppObject>" + nameElement +
           "<ID>300</ID>"
           "<InReferences><Flow><CDBORDERINPOSITION>2</CDBORDERINPOSITION>"
           "<VISIBLE>1</VISIBLE><SNVTCOMPATIBILITYLIST>105</SNVTCOMPATIBILITYLIST></Flow>"
           "</InReferences>"
           "<OutReferences><Out1><VISIBLE>1</VISIBLE><SNVTTYPE>105</SNVTTYPE></Out1>"
           "</OutReferences>"
           "<Attributes><Setpoint><CDBORDERINPOSITION>1</CDBORDERINPOSITION>"
           "<VISIBLE>1</VISIBLE><SNVTTYPE>105</SNVTTYPE><DefaultValue>20</DefaultValue>"
           "<Min>0</Min><Max>100</Max>" +
           attributeExtra + "</Setpoint></Attributes></AppObject>";
}

// What a host can see of a block, for comparing a hostile block with its harmless twin.
struct Observed {
    std::string name;
    std::vector<std::string> messages;
    std::string values;
    int32_t inputs = 0;
    int32_t outputs = 0;
    std::string stream;

    bool operator==(const Observed&) const = default;
};

void PrintTo(const Observed& o, std::ostream* out) {
    *out << "name=" << o.name << " inputs=" << o.inputs << " outputs=" << o.outputs
         << " values=" << o.values << " stream=" << o.stream << " messages=" << o.messages.size();
}

// Each definition in a process of its own: the store knows types by name.
Observed Observe(const std::string& definition) {
    ProcessState::Reset();
    TempLibrary library;
    library.WriteDefinition("HOSTILE", definition);
    ScopedMessageRecorder recorder;
    TestBlock block("HOSTILE", Shipped());
    Observed seen;
    seen.name = block->IAppObject_Name();
    seen.values = AttributeValues(*block);
    seen.inputs = block->IAppObject_Inputs() ? block->IAppObject_Inputs()->IInputs_Count() : 0;
    seen.outputs = block->IAppObject_Outputs() ? block->IAppObject_Outputs()->IOutputs_Count() : 0;
    seen.stream = block->IAppObject_Stream();
    seen.messages = MessageTexts(recorder);
    return seen;
}

// The names of the child elements of a node, in order.
std::vector<std::string> ChildNames(pugi::xml_node node) {
    std::vector<std::string> names;
    for (pugi::xml_node child : node.children()) {
        names.push_back(child.name());
    }
    return names;
}

// The block element below 100,000 others, an attribute and a name holding as many levels: a
// header element whose first child is an element has no text and is skipped.
TEST(HostileDefinitionTest, DeepNestingBehavesLikeItsShallowTwin) {
    const Observed twin = Observe(Definition());
    EXPECT_EQ(twin.messages, std::vector<std::string>{});
    EXPECT_EQ(twin.inputs, 1);
    EXPECT_EQ(Observe(Nest(kDeep, Definition())), twin);
    EXPECT_EQ(Observe(Definition("<NAME>Deep</NAME>", Nest(kDeep))), twin);
    EXPECT_EQ(Observe(Definition("<NAME>" + Nest(kDeep) + "</NAME>")), Observe(Definition("")));
}

// A definition whose attribute has a local name that no XML element may bear: the block is
// made, and its project save stops with an error at that member, the document around it whole.
TEST(HostileDefinitionTest, InvalidXmlNameStopsTheSaveWithAnError) {
    const std::string order = "<CDBORDERINPOSITION>1</CDBORDERINPOSITION><SNVTTYPE>8</SNVTTYPE>";
    TempLibrary library;
    library.WriteDefinition("BadName", "<AppObject><ID>1</ID><Attributes><First>" + order +
                                           "</First><p:9Lives>" + order + "</p:9Lives><Last>" +
                                           order + "</Last></Attributes></AppObject>");
    ScopedMessageRecorder recorder;
    TestBlock block("BadName", Shipped());
    pugi::xml_document document;
    pugi::xml_node project = document.append_child("Project");
    EXPECT_THROW(block->IAppObject_XmlSave(project, document), Error);
    const pugi::xml_node saved = project.child("BadName");
    EXPECT_EQ(ChildNames(saved), (std::vector<std::string>{"UserName", "X_Position", "Y_Position",
                                                           "CDB", "Attributes"}));
    EXPECT_EQ(ChildNames(saved.child("Attributes")), std::vector<std::string>{"First"});
    EXPECT_NE(xml::LoadString(XmlText(document), nullptr), nullptr);
}

// Each type name below would reach a definition file that the test planted outside the
// library (or, for the names the file system can't hold, nothing at all). The block must
// behave as for a type that does not exist and read none of them. Which names are unsafe is
// the file layer's rule; here one of each way out.
TEST(HostileDefinitionTest, TypeNameOutsideTheLibraryIsNotAvailable) {
    TempFolder tree;
    const std::filesystem::path root = tree.Path();
    const std::string trap =
        "<AppObject><NAME>Trap</NAME><ID>302</ID><Attributes><A>"
        "<CDBORDERINPOSITION>1</CDBORDERINPOSITION><SNVTTYPE>8</SNVTTYPE>"
        "</A></Attributes></AppObject>";
    const std::string absolute = (root / "ABS").string();
    // Where each name, taken as a path, would lead: library/<name>/<name>.xml, cut at a NUL.
    tree.Write("TRAP.xml", trap);           // "../TRAP"
    tree.Write("TRAP/manual.pdf", "%PDF");  // "../TRAP", its datasheet
    tree.Write("library/TRAP.xml", trap);   // "TRAP.xml", NUL, ...
    tree.Write("ABS.xml", trap);            // an absolute name

    const std::string names[] = {
        "../TRAP", std::string("TRAP.xml\0/x", 11), std::string("TRAP\0", 5),
        absolute,  std::string(10000, 'A'),
    };
    UseLibrary(root / "library");
    for (const std::string& name : names) {
        SCOPED_TRACE(name.substr(0, 40));
        ScopedMessageRecorder recorder;
        auto block = std::make_shared<CDBAppObject>();
        block->IAppObject_XmlSNVTDoc(ShippedDictionary());
        int32_t errorCode = 17;
        EXPECT_TRUE(block->IAppObject_Init(name, errorCode));
        EXPECT_EQ(errorCode, 17);
        EXPECT_EQ(MessageTexts(recorder), std::vector<std::string>{NotAvailable(name)});
        EXPECT_EQ(block->IAppObject_Name(), "");
        EXPECT_FALSE(block->IAppObject_DatasheetAvailable());

        block->IAppObject_Create();
        EXPECT_EQ(MessageTexts(recorder), std::vector<std::string>(4, NotAvailable(name)));
        EXPECT_EQ(block->IAppObject_Attributes(), nullptr);
        EXPECT_EQ(block->IAppObject_CDBDimension(), 3);
        EXPECT_EQ(block->IAppObject_Stream(), "030000");
        EXPECT_EQ(DefinitionCache().Store()->FindDocument(name), nullptr);
        block->IAppObject_Destroy();
    }
}

}  // namespace
}  // namespace zerbin::testing
