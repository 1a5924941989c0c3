#include "datatypes/CDBFields.h"

#include "datatypes/CDBField.h"
#include "interfaces/Error.h"
#include "platform/Messages.h"
#include "tests/support/TestSupport.h"

namespace zerbin {
namespace {

using testing::ScopedDictionary;
using testing::Snvts;

constexpr const char* kTypes = R"(
  <SNVT_105><TYPE>SignedNumeric</TYPE><UNIT>degC</UNIT><MIN>-273.17</MIN><MAX>327,66</MAX>
    <LENGTH>2</LENGTH><A_COEF>1</A_COEF><B_COEF>-2</B_COEF><C_COEF>0</C_COEF></SNVT_105>
  <SNVT_106><TYPE>Enum</TYPE><Enums><OFF>0</OFF><ON>1</ON><AUTO>2</AUTO></Enums></SNVT_106>
  <SNVT_63><TYPE>Float</TYPE><UNIT>degC</UNIT><LENGTH>4</LENGTH></SNVT_63>
  <SNVT_7><TYPE>Textual</TYPE><LENGTH>3</LENGTH></SNVT_7>
  <SNVT_8><TYPE>Bitfield</TYPE><UNIT>bits</UNIT><MIN>0</MIN><MAX>255</MAX><LENGTH>1</LENGTH>
    </SNVT_8>
  <SNVT_9><TYPE>UnsignedNumeric</TYPE><LENGTH>2</LENGTH><A_COEF>70000</A_COEF></SNVT_9>
  <SNVT_200><TYPE>Struct</TYPE><Fields>
    <Setpoint>105</Setpoint><!-- <Hidden>7</Hidden> --><Mode>106</Mode><Gain>63</Gain>
  </Fields></SNVT_200>
  <SNVT_201><TYPE>Struct</TYPE><Fields><A>105</A><Bad>999</Bad><B>106</B></Fields></SNVT_201>
  <SNVT_202><TYPE>Struct</TYPE><Fields><A>105</A><a>106</a><B>106</B></Fields></SNVT_202>
  <SNVT_203><TYPE>Struct</TYPE></SNVT_203>
  <SNVT_204><TYPE>Struct</TYPE><Fields><Name>7</Name><Bits>8</Bits><Wide>9</Wide></Fields>
    </SNVT_204>
  <SNVT_205><TYPE>Struct</TYPE><Fields><x:Pre xmlns:x="urn:x">106</x:Pre><Empty/></Fields>
    </SNVT_205>
  <SNVT_206><TYPE>Struct</TYPE><Fields><self>206</self><other>200</other></Fields></SNVT_206>)";

// Hands out a converter that shows which operation made a text.
class FakeConverter : public IUnitConverter {
public:
    std::string ToDisplayValue(const std::string& typeId, const std::string& stored) override {
        return "<" + typeId + ":" + stored + ">";
    }
    std::string FromDisplayValue(const std::string&, const std::string& text) override {
        return text;
    }
    std::string DisplayUnit(const std::string& typeId) override { return "unit" + typeId; }
    double ParseDisplayNumber(const std::string&) override { return 0; }
    int16_t DecimalPlaces(const std::string&) override { return 0; }
    std::string MinimumFor(const std::string&) override { return {}; }
    std::string MaximumFor(const std::string&) override { return {}; }
    std::string DefaultFor(const std::string&) override { return {}; }
};

class FakeAttribute : public IUnitsProvider {
public:
    std::shared_ptr<IUnitConverter> UnitsManager() override { return converter; }
    std::shared_ptr<IUnitConverter> converter = std::make_shared<FakeConverter>();
};

class CDBFieldsTest : public ::testing::Test {
protected:
    std::shared_ptr<CDBFields> Load(const std::string& typeId) {
        auto fields = std::make_shared<CDBFields>();
        fields->LoadFields(typeId, 10);
        for (const auto& field : fields->Fields()) {
            field->SetParent(attribute_);
        }
        return fields;
    }

    ScopedDictionary dictionary_{Snvts(kTypes)};
    ScopedMessageRecorder messages_;
    std::shared_ptr<FakeAttribute> attribute_ = std::make_shared<FakeAttribute>();
};

TEST_F(CDBFieldsTest, LoadsTheFieldsInOrderWithRunningOffsets) {
    auto fields = Load("200");
    ASSERT_EQ(fields->IFields_Count(), 3);
    const auto all = fields->IFields_NewEnum();
    const char* names[] = {"Setpoint", "Mode", "Gain"};
    const int32_t offsets[] = {0, 2, 3};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(all[i]->IField_Name(), names[i]);
        EXPECT_EQ(all[i]->IField_Index(), i + 1);
        EXPECT_EQ(all[i]->IField_Offset(), offsets[i]);
    }
    EXPECT_EQ(fields->IFields_Length(), 0);
    EXPECT_EQ(all[0]->IField_SNVTType()->ISNVType_ID(), "105");
    EXPECT_EQ(all[2]->IField_SNVTType()->ISNVType_Length(), 4);
    // The lookup rules are KeyedCollection's; only that the fields are filed by their names.
    EXPECT_EQ(fields->IFields_Item("gain"), all[2]);
    EXPECT_EQ(fields->Item("2"), all[1]);
    EXPECT_TRUE(messages_.Messages().empty());
}

// Fields are flat: a field whose type is a structure, its own included, has no fields and no
// length, so structures that name each other end after one step.
TEST_F(CDBFieldsTest, AStructureFieldHoldsNoFieldsOfItsOwn) {
    auto fields = Load("206");
    ASSERT_EQ(fields->IFields_Count(), 2);
    for (const auto& field : fields->IFields_NewEnum()) {
        EXPECT_EQ(field->IField_Fields(), nullptr) << field->IField_Name();
        EXPECT_EQ(field->IField_SNVTType()->ISNVType_Length(), 0) << field->IField_Name();
    }
}

TEST_F(CDBFieldsTest, AFailedLoadThrowsAndKeepsTheFieldsBefore) {
    const struct {
        const char* id;
        std::vector<std::string> kept;
    } rows[] = {
        {"999", {}},       // no entry
        {"203", {}},       // no Fields element
        {"202", {"A"}},    // a repeated name, in another case
        {"205", {"Pre"}},  // names are base names; an empty field has no type id
    };
    for (const auto& row : rows) {
        CDBFields fields;
        EXPECT_THROW(fields.LoadFields(row.id, 10), Error) << row.id;
        std::vector<std::string> names;
        for (const auto& field : fields.Fields()) {
            names.push_back(field->IField_Name());
        }
        EXPECT_EQ(names, row.kept) << row.id;
    }
}

TEST_F(CDBFieldsTest, DisplayTextsDependOnTheClass) {
    auto all = Load("200");
    auto bits = Load("204");
    const struct {
        std::shared_ptr<CDBField> field;
        const char* value;
        const char* defaultValue;
        const char* min;
        const char* max;
        const char* dispValue;
        const char* dispDefault;
        const char* dispMin;
        const char* dispMax;
    } rows[] = {
        {all->Item("Setpoint"), "20.5", "21", "-10", "40", "<105:20.5> unit105", "21 degC",
         "-10 degC", "40 degC"},
        {all->Item("Gain"), "1,5", "2", "", "", "<63:1.5> unit63", "2 degC", " degC", " degC"},
        {all->Item("Mode"), "2", "7", "0", "1", "AUTO", "", "OFF", "ON"},
        {bits->Item("Bits"), " 5 ", " 6 ", "0", "255", "5", "6", "0", "255"},
        {bits->Item("Name"), " ab ", "x ", "1.5", "", "ab", "x", "1.5", ""},
    };
    for (const auto& row : rows) {
        row.field->DefaultValue(row.defaultValue);
        row.field->IField_Value(row.value);
        row.field->SetFieldMin(row.min);
        row.field->SetFieldMax(row.max);
        const std::string name = row.field->IField_Name();
        EXPECT_EQ(row.field->IField_DispValue(), row.dispValue) << name;
        EXPECT_EQ(row.field->IField_DispDefault(), row.dispDefault) << name;
        EXPECT_EQ(row.field->IField_DispMin(), row.dispMin) << name;
        EXPECT_EQ(row.field->IField_DispMax(), row.dispMax) << name;
    }
}

TEST_F(CDBFieldsTest, ANumericValueNeedsTheParentsConverter) {
    CDBFields fields;
    fields.LoadFields("200", 10);
    EXPECT_THROW(fields.Item("Setpoint")->IField_DispValue(), Error);
    EXPECT_THROW(fields.Item("Setpoint")->UnitsManager(), Error);
    EXPECT_EQ(fields.Item("Mode")->IField_DispValue(), "") << "an enumeration needs none";
    CDBField unloaded;
    EXPECT_THROW(unloaded.IField_DispValue(), Error);
}

TEST_F(CDBFieldsTest, WritesEachFieldAtItsOffsetInBothByteOrders) {
    auto fields = Load("200");
    fields->Item("Setpoint")->IField_Value("20.5");
    fields->Item("Mode")->IField_Value("2");
    fields->Item("Gain")->IField_Value("1.5");
    struct Row {
        bool intel;
        const char* image;
    };
    // A 3-byte header, Setpoint, Mode, Gain, one byte after.
    const Row rows[] = {{false, "AAAAAA0802023FC00000FF"}, {true, "AAAAAA0208020000C03FFF"}};
    for (const Row& row : rows) {
        std::string image = "AAAAAA00000000000000FF";
        for (const auto& field : fields->Fields()) {
            image = row.intel ? field->WriteIntelStream(image, 3) : field->WriteStream(image, 3);
        }
        EXPECT_EQ(image, row.image) << "intel " << row.intel;
    }
    EXPECT_EQ(fields->Item("Setpoint")->IField_Value(), "20.5") << "the value stays as it was";
}

TEST_F(CDBFieldsTest, WritesWhatFitsAndFailsBeyondTheImageOrWithAWideCoefficient) {
    auto all = Load("200");
    all->Item("Setpoint")->IField_Value("400");  // beyond 2 signed bytes at 0.01
    all->Item("Mode")->IField_Value("1");
    all->Item("Gain")->IField_Value("1");
    std::string image = "12345678";
    for (const auto& field : all->Fields()) {
        image = field->WriteStream(image, 0);
    }
    // Setpoint keeps its bytes, Mode is written, Gain runs past the end and writes what fits.
    EXPECT_EQ(image, "1234013F");

    auto fields = Load("204");
    fields->Item("Name")->IField_Value("ab");  // a text has one form in both byte orders
    EXPECT_EQ(fields->Item("Name")->WriteStream("000000000000", 1), "006162200000");
    EXPECT_EQ(fields->Item("Name")->WriteIntelStream("000000000000", 1), "006162200000");
    fields->Item("Wide")->IField_Value("1");
    EXPECT_THROW(fields->Item("Wide")->WriteStream("0000000000", 0), OverflowError);
    EXPECT_THROW(fields->Item("Bits")->WriteStream("0000000000", 2), Error);
    EXPECT_THROW(fields->Item("Name")->WriteIntelStream("00", 1), Error);
}

}  // namespace
}  // namespace zerbin
