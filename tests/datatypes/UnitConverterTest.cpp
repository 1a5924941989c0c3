#include "datatypes/UnitConverter.h"

#include <algorithm>
#include <cmath>

#include "datatypes/CDBSNVTType.h"
#include "datatypes/TypeClass.h"
#include "platform/Messages.h"
#include "tests/support/TestSupport.h"

namespace zerbin {
namespace {

class UnitConverterTest : public ::testing::Test {
protected:
    testing::ScopedDictionary dictionary_{
        testing::LoadXml(testing::FixturesDir() / "datatypes" / "units.xml")};
    ScopedMessageRecorder messages_;  // the converter never shows one
    UnitConverter si_{UnitSystem::SI};
    UnitConverter us_{UnitSystem::US};

    void TearDown() override { EXPECT_TRUE(messages_.Messages().empty()); }
};

// The scale of a type and the raw values its bytes can hold, from its type record.
struct ScaleOf {
    explicit ScaleOf(const std::string& typeId) {
        CDBSNVTType type;
        type.ResolveByID(typeId);
        isFloat = ClassOf(type) == TypeClass::Float;
        a = type.ISNVType_ACoef();
        b = type.ISNVType_BCoef();
        c = type.ISNVType_CCoef();
        const bool isSigned = ClassOf(type) == TypeClass::SignedNumeric;
        // Scaled types take one or two bytes; a Float's four are never walked.
        const int bits = 8 * std::min(type.ISNVType_Length(), 2);
        rawMin = isSigned ? -(1 << (bits - 1)) : 0;
        rawMax = isSigned ? (1 << (bits - 1)) - 1 : (1 << bits) - 1;
    }
    // A * 10^B * (raw + C), by the same division the converter uses for a decimal step.
    double Stored(int raw) const {
        const double scale = std::pow(10.0, std::abs(b));
        const double steps = raw + c;
        return b < 0 ? steps * a / scale : steps * a * scale;
    }

    bool isFloat = false;
    int a = 0, b = 0, c = 0;
    int rawMin = 0, rawMax = 0;
};

struct DisplayRow {
    UnitSystem system;
    const char* typeId;
    const char* stored;
    const char* shown;
    const char* unit;
    int16_t decimals;
};

TEST_F(UnitConverterTest, ShowsStoredValuesInTheUnitsOfTheSystem) {
    const UnitSystem SI = UnitSystem::SI;
    const UnitSystem US = UnitSystem::US;
    const DisplayRow rows[] = {
        {SI, "105", "21.555", "21.56", "°C", 2},
        {SI, "105", "21.545", "21.54", "°C", 2},
        {SI, "39", "20,0", "20", "°C", 1},
        {SI, "63", "0.0004", "0.0004", "°C", 3},  // a single in its shortest text
        {SI, "15", " 7 ", "7", "l/s", 0},
        {SI, "105", "12abc", "12abc", "°C", 2},
        {SI, "106", "1", "1", "", 0},
        {SI, "999", "5.55", "5.55", "", 0},
        {US, "105", "20", "68", "°F", 2},
        {US, "105", "-273.17", "-459.71", "°F", 2},
        {US, "39", "-40", "-40", "°F", 1},
        {US, "113", "249.08891", "1", "inH2O", 3},
        {US, "53", "1", "15.850323", "gpm", 2},  // 15.85 would store another single
        {US, "147", "-0.5", "-0.9", "°F", 2},    // a difference: no 32
        {US, "42", "1", "35", "ft³", 0},
        {US, "1", "3.5", "3.5", "A", 1},
        {US, "105", "abc", "abc", "°F", 2},
    };
    for (const DisplayRow& row : rows) {
        UnitConverter& converter = row.system == UnitSystem::US ? us_ : si_;
        const std::string where =
            std::string(row.system == US ? "US " : "SI ") + row.typeId + " \"" + row.stored + "\"";
        EXPECT_EQ(converter.ToDisplayValue(row.typeId, row.stored), row.shown) << where;
        EXPECT_EQ(converter.DisplayUnit(row.typeId), row.unit) << where;
        EXPECT_EQ(converter.DecimalPlaces(row.typeId), row.decimals) << where;
    }
}

// Each type the US table converts, with the unit and the decimals a user sees: the table's,
// or more where a scaled type needs them to come back (35, 110, 161 in this dictionary).
TEST_F(UnitConverterTest, EachConvertedTypeHasItsUsUnitAndDecimals) {
    const struct {
        const char* typeId;
        const char* unit;
        int16_t decimals;
    } rows[] = {
        {"39", "°F", 1},    {"63", "°F", 2},      {"105", "°F", 2},  {"30", "psi", 2},
        {"59", "inH2O", 3}, {"113", "inH2O", 3},  {"15", "gpm", 0},  {"53", "gpm", 2},
        {"17", "ft", 1},    {"54", "ft", 2},      {"20", "in", 3},   {"34", "fpm", 0},
        {"62", "fpm", 1},   {"41", "gal", 2},     {"65", "gal", 2},  {"42", "ft³", 0},
        {"24", "lb", 1},    {"35", "fpm", 1},     {"110", "ft²", 3}, {"161", "gpm", 2},
        {"147", "°F", 2},   {"131", "°F/min", 1},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(us_.DisplayUnit(row.typeId), row.unit) << row.typeId;
        EXPECT_EQ(us_.DecimalPlaces(row.typeId), row.decimals) << row.typeId;
    }
}

TEST_F(UnitConverterTest, NumbersFollowTheSeparatorInForce) {
    testing::ScopedLocale comma;
    ZERBIN_REQUIRE_COMMA_LOCALE(comma);
    EXPECT_EQ(us_.ToDisplayValue("105", "21.5"), "70,7");
    EXPECT_EQ(us_.FromDisplayValue("105", "68.5 °F"), "20,28");
    EXPECT_EQ(si_.MinimumFor("105"), "-273,17");
    EXPECT_DOUBLE_EQ(si_.ParseDisplayNumber("1.5"), 1.5);
}

TEST_F(UnitConverterTest, StoresADisplayTextOnTheResolutionOfTheType) {
    struct Row {
        UnitSystem system;
        const char* typeId;
        const char* shown;
        const char* stored;
    };
    const UnitSystem SI = UnitSystem::SI;
    const UnitSystem US = UnitSystem::US;
    const Row rows[] = {
        {SI, "105", "21.555", "21.56"},   {SI, "39", "20.04 °C", "20"}, {SI, "81", "-0.001", "0"},
        {SI, "902", "33", "40"},          {SI, "63", "1e39", "1E+39"},  {SI, "15", "abc", "abc"},
        {US, "105", "70.7 °F", "21.5"},   {US, "39", "70", "21.1"},     {US, "113", "1", "249"},
        {US, "53", "15.85", "0.9999796"}, {US, "105", "", ""},
    };
    for (const Row& row : rows) {
        UnitConverter& converter = row.system == UnitSystem::US ? us_ : si_;
        EXPECT_EQ(converter.FromDisplayValue(row.typeId, row.shown), row.stored)
            << (row.system == US ? "US " : "SI ") << row.typeId << " \"" << row.shown << "\"";
    }
}

// Every stored value on a type's scale grid comes back from its display form, in both
// systems, for each scaled type that the US table converts.
TEST_F(UnitConverterTest, ScaledTypesRoundTripThroughTheirDisplayForm) {
    for (UnitConverter* converter : {&si_, &us_}) {
        for (const UnitConversion& row : UsCustomaryTable()->Rows()) {
            const ScaleOf scale(row.typeId);
            if (scale.isFloat) {
                continue;
            }
            const int stride = (scale.rawMax - scale.rawMin) / 2000 + 1;
            for (int raw = scale.rawMin; raw <= scale.rawMax; raw += stride) {
                for (const int r : {raw, std::min(raw + stride - 1, scale.rawMax)}) {
                    const std::string stored = FormatDouble(scale.Stored(r));
                    const std::string shown = converter->ToDisplayValue(row.typeId, stored);
                    ASSERT_EQ(converter->FromDisplayValue(row.typeId, shown), stored)
                        << row.typeId << " raw " << r << " shown " << shown;
                }
            }
        }
    }
}

TEST_F(UnitConverterTest, LimitsAreTheDictionarysInDisplayForm) {
    const struct {
        const char* typeId;
        const char* siMin;
        const char* siMax;
        const char* usMin;
        const char* usMax;
    } rows[] = {
        {"105", "-273.17", "327.66", "-459.71", "621.79"},  // as the values themselves show
        {"63", "-273.17", "1E38", "-459.706", "1.8E+38"},
        {"15", "0", "65534", "0", "1038735"},
        {"902", "-50.5", "-3", "-50.5", "-3"},
        {"903", "abc", "", "abc", ""},
        {"999", "", "", "", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(si_.MinimumFor(row.typeId), row.siMin) << row.typeId;
        EXPECT_EQ(si_.MaximumFor(row.typeId), row.siMax) << row.typeId;
        EXPECT_EQ(us_.MinimumFor(row.typeId), row.usMin) << row.typeId;
        EXPECT_EQ(us_.MaximumFor(row.typeId), row.usMax) << row.typeId;
    }
}

TEST_F(UnitConverterTest, ConvertersFollowTheProcessSettingUnlessFixed) {
    auto following = FollowingUnitConverter();
    EXPECT_EQ(CurrentUnitSystem(), UnitSystem::SI);
    EXPECT_EQ(following->DisplayUnit("105"), "°C");
    SetUnitSystem(UnitSystem::US);
    EXPECT_EQ(following->DisplayUnit("105"), "°F");
    EXPECT_EQ(FollowingUnitConverter()->ToDisplayValue("105", "100"), "212");
    EXPECT_EQ(si_.DisplayUnit("105"), "°C");
    SetUnitSystem(UnitSystem::SI);
    EXPECT_EQ(following->DisplayUnit("105"), "°C");
    EXPECT_EQ(us_.DisplayUnit("105"), "°F");
}

TEST_F(UnitConverterTest, AnOffsetOfZeroConvertsDifferences) {
    static constexpr UnitConversion kRows[] = {
        {"900", "K", "°F", 1.8, 0.0, 1},
        {"105", "°C", "°F", 1.8, 32.0, 2},
        {"900", "K", "ignored", 99.0, 0.0, 1},
    };
    UnitConverter converter(UnitSystem::US, std::make_shared<UnitConversionTable>(kRows));
    EXPECT_EQ(converter.ToDisplayValue("900", "10"), "18");
    EXPECT_EQ(converter.ToDisplayValue("105", "10"), "50");
    EXPECT_EQ(converter.DisplayUnit("900"), "°F") << "the first row of an id wins";
    EXPECT_EQ(converter.DecimalPlaces("900"), 2) << "0.01 K needs two decimals in °F";
    EXPECT_EQ(converter.FromDisplayValue("900", "-18"), "-10");
    EXPECT_EQ(converter.DisplayUnit("39"), "°C") << "only the rows given convert";
}

}  // namespace
}  // namespace zerbin
