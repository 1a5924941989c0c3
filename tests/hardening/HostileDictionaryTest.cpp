// SNVT dictionaries written by others: structures whose fields name each other, or
// themselves. Fields are flat, so a cycle ends after one step instead of recursing.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "base/MMain.h"
#include "tests/support/Blocks.h"

namespace zerbin::testing {
namespace {

constexpr const char* kCyclicDictionary = R"(<SNVTS>
  <SNVT_8><NAME>SNVT_count</NAME><TYPE>UnsignedNumeric</TYPE><LENGTH>2</LENGTH>
    <A_COEF>1</A_COEF><B_COEF>0</B_COEF><C_COEF>0</C_COEF><MIN>0</MIN><MAX>65535</MAX></SNVT_8>
  <SNVT_900><NAME>SNVT_ring_a</NAME><TYPE>Struct</TYPE>
    <Fields><inner>901</inner><level>8</level></Fields></SNVT_900>
  <SNVT_901><NAME>SNVT_ring_b</NAME><TYPE>Struct</TYPE>
    <Fields><outer>900</outer></Fields></SNVT_901>
  <SNVT_902><NAME>SNVT_self</NAME><TYPE>Struct</TYPE>
    <Fields><self>902</self><count>8</count></Fields></SNVT_902>
</SNVTS>)";

constexpr const char* kCyclicDefinition = R"(<AppObject><NAME>Ring</NAME><ID>900</ID>
  <InReferences><In><CDBORDERINPOSITION>3</CDBORDERINPOSITION>
    <SNVTCOMPATIBILITYLIST>900,901,902</SNVTCOMPATIBILITYLIST></In></InReferences>
  <OutReferences><Out><VISIBLE>1</VISIBLE><SNVTTYPE>901</SNVTTYPE></Out></OutReferences>
  <Attributes>
    <Ring><CDBORDERINPOSITION>1</CDBORDERINPOSITION><SNVTTYPE>900</SNVTTYPE>
      <level><DefaultValue>258</DefaultValue></level></Ring>
    <Self><CDBORDERINPOSITION>2</CDBORDERINPOSITION><SNVTTYPE>902</SNVTTYPE>
      <count><DefaultValue>772</DefaultValue></count></Self>
  </Attributes></AppObject>)";

struct FieldShape {
    std::string name;
    std::string typeClass;
    int32_t length;
    int32_t offset;
    bool operator==(const FieldShape&) const = default;
};

void PrintTo(const FieldShape& f, std::ostream* out) {
    *out << f.name << ":" << f.typeClass << "/" << f.length << "@" << f.offset;
}

std::vector<FieldShape> Shape(const std::shared_ptr<IAttribute>& attribute) {
    std::vector<FieldShape> shape;
    for (const auto& field : attribute->IAttribute_Fields()->IFields_NewEnum()) {
        EXPECT_EQ(field->IField_Fields(), nullptr) << "a field holds no fields of its own";
        const auto type = field->IField_SNVTType();
        shape.push_back({field->IField_Name(), type->ISNVType_GenType(), type->ISNVType_Length(),
                         field->IField_Offset()});
    }
    return shape;
}

TEST(HostileDictionaryTest, StructuresThatNameEachOtherStopAfterOneLevel) {
    ScopedDictionary dictionary(kCyclicDictionary);
    TempLibrary library;
    library.WriteDefinition("RING", kCyclicDefinition);
    ScopedMessageRecorder recorder;

    TestBlock block("RING");
    const auto attributes = block->IAppObject_Attributes();
    ASSERT_NE(attributes, nullptr);
    ASSERT_EQ(attributes->IAttributes_Count(), 2);

    // A field whose type is a structure gets no fields and no length of its own.
    const auto ring = attributes->IAttributes_Item("Ring");
    EXPECT_EQ(Shape(ring), (std::vector<FieldShape>{{"inner", "Struct", 0, 0},
                                                    {"level", "UnsignedNumeric", 2, 0}}));
    EXPECT_EQ(ring->IAttribute_SNVTType()->ISNVType_Length(), 2);
    const auto self = attributes->IAttributes_Item("Self");
    EXPECT_EQ(Shape(self), (std::vector<FieldShape>{{"self", "Struct", 0, 0},
                                                    {"count", "UnsignedNumeric", 2, 0}}));

    // Ring at 3 and Self at 5, two bytes each; the input at 7.
    EXPECT_EQ(block->IAppObject_CDBDimension(), 9);
    EXPECT_EQ(block->IAppObject_Stream(),
              "09038401020304"
              "0000");
    // The definition gives the structure-typed fields no default, and is told so.
    EXPECT_EQ(MessageTexts(recorder),
              (std::vector<std::string>{
                  "Ring.inner: Default value not defined into the XML file of the object Ring; "
                  "0 assumed.",
                  "Self.self: Default value not defined into the XML file of the object Ring; "
                  "0 assumed."}));
}

}  // namespace
}  // namespace zerbin::testing
