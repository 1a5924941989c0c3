// The unit converter: stored values of the SNVT dictionary to and from the units the user
// sees. The SI system shows stored values as they are, in the dictionary's unit; the US
// customary system, which the host can switch on, converts the types a US user reads in
// other units.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

#include "interfaces/IHostServices.h"

namespace zerbin {

enum class UnitSystem { SI, US };

// The system of converters made from now on, and of those already made that follow the
// process setting. SI until the host switches.
void SetUnitSystem(UnitSystem system);
UnitSystem CurrentUnitSystem();

// The converter that reads the process-wide SNVT dictionary and follows the process setting.
// It holds nothing of its own, so one serves every block and editor of the process.
std::shared_ptr<IUnitConverter> FollowingUnitConverter();

// One type that the US customary system shows in another unit: display = stored * factor +
// offset. An offset of 0 converts differences (a temperature difference in kelvin shows as
// degrees Fahrenheit without the 32).
struct UnitConversion {
    const char* typeId;
    const char* metricUnit;  // the dictionary's unit the factor starts from
    const char* usUnit;
    double factor;
    double offset;
    // Decimals of the US display; a scaled type gets more when its resolution needs them for
    // display and stored value to round-trip.
    int16_t usDecimals;
};

// Rows by type id, looked up through a hash map built once.
class UnitConversionTable {
public:
    // rows must outlive the table; the first row of an id wins.
    explicit UnitConversionTable(std::span<const UnitConversion> rows);
    // nullptr when the type keeps its unit.
    const UnitConversion* Find(std::string_view typeId) const;
    std::span<const UnitConversion> Rows() const { return rows_; }

private:
    std::span<const UnitConversion> rows_;
    std::unordered_map<std::string_view, const UnitConversion*> byId_;
};

// The built-in US customary table (platform/UnitConverterTable.cpp).
std::shared_ptr<const UnitConversionTable> UsCustomaryTable();

// The converter. Only the numeric classes (Float, SignedNumeric, UnsignedNumeric) have
// display numbers; any other type, an unknown id, or a text that is no number comes back as
// it was. It shows no message.
class UnitConverter : public IUnitConverter {
public:
    // Without a system it follows the process setting at each call.
    explicit UnitConverter(std::optional<UnitSystem> system = std::nullopt,
                           std::shared_ptr<const UnitConversionTable> table = UsCustomaryTable());

    // The stored value in display units, rounded to DecimalPlaces, with DecimalSeparator; a
    // Float in the shortest text that reads back as the same single.
    std::string ToDisplayValue(const std::string& typeId, const std::string& storedValue) override;
    // The stored value of a display text (a trailing unit is allowed), rounded to the type's
    // resolution: its scale step for a scaled type, a single (in its shortest text) for a
    // Float.
    std::string FromDisplayValue(const std::string& typeId,
                                 const std::string& displayText) override;
    // The dictionary's UNIT, or the US unit of a converted type; empty for other classes.
    std::string DisplayUnit(const std::string& typeId) override;
    // The leading number of a display text read with either separator; 0 when there is none.
    double ParseDisplayNumber(const std::string& displayText) override;
    // SI: max(0, -B_COEF) for a scaled type, 3 for a Float; 0 for other classes.
    int16_t DecimalPlaces(const std::string& typeId) override;
    // The dictionary's MIN and MAX in display form; a converted limit is shown as the value
    // itself would be, so that the largest valid value never shows above its limit.
    std::string MinimumFor(const std::string& typeId) override;
    std::string MaximumFor(const std::string& typeId) override;
    // Stored form: 0 brought into the dictionary's limits; "" for a Textual type.
    std::string DefaultFor(const std::string& typeId) override;

    // What the answers depend on besides the dictionary and the decimal separator.
    UnitSystem EffectiveSystem() const { return system_.value_or(CurrentUnitSystem()); }
    const UnitConversionTable* Table() const { return table_.get(); }

private:
    struct TypeFacts;
    TypeFacts Facts(const std::string& typeId) const;
    const UnitConversion* ConversionFor(const TypeFacts& facts) const;
    int16_t Decimals(const TypeFacts& facts, const UnitConversion* conversion) const;
    double OnGrid(const TypeFacts& facts, double stored) const;
    std::string Limit(const std::string& typeId, bool lower);

    std::optional<UnitSystem> system_;
    std::shared_ptr<const UnitConversionTable> table_;
};

}  // namespace zerbin
