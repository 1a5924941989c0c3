#include "datatypes/UnitConverter.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <system_error>

#include <pugixml.hpp>

#include "base/MMain.h"
#include "base/ProcessState.h"
#include "base/SkipMode.h"
#include "base/Xml.h"
#include "datatypes/CDBSNVTType.h"
#include "datatypes/SNVTDataConversion.h"
#include "datatypes/SnvtDictionary.h"
#include "datatypes/TypeClass.h"

namespace zerbin {
namespace {

struct ChosenSystem {
    UnitSystem system = UnitSystem::SI;
};

UnitSystem& SystemSlot() {
    return ProcessState::Get<ChosenSystem>().system;
}

// Decimals of a Float type in SI: its values have no scale step, and three decimals hold
// the resolution of the 2-byte float near 1 (2^-11).
constexpr int16_t kFloatDecimals = 3;

// The number at the start of a text: either "." or "," is the point, the first one found, as
// everywhere in the component.
std::optional<double> ReadNumber(const std::string& text, std::size_t& end) {
    return ReadLocaleNumber(NormalizeDecimal(text), end);
}

// The whole text as a number, blanks around it allowed.
std::optional<double> WholeNumber(const std::string& text) {
    std::size_t end = 0;
    const std::optional<double> value = ReadNumber(text, end);
    if (!value || text.find_first_not_of(' ', end) != std::string::npos) {
        return std::nullopt;
    }
    return value;
}

// Rounds half to even at a decimal place, working on the shortest decimal form of the value,
// so that 2.675 rounds the way its reader expects (to 2.68) and not by its binary neighbour.
double RoundDecimal(double value, int decimals) {
    if (!std::isfinite(value) || value == 0.0) {
        return value;
    }
    std::array<char, 64> buffer{};
    const auto [last, ec] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                          std::chars_format::scientific);
    const std::string text(buffer.data(), last);
    const bool negative = text.front() == '-';
    const std::size_t e = text.find('e');
    std::string digits;
    for (std::size_t k = negative ? 1 : 0; k < e; ++k) {
        if (text[k] != '.') {
            digits += text[k];
        }
    }
    const int exponent = std::atoi(text.c_str() + e + 1);
    const long keep = static_cast<long>(exponent) + 1 + decimals;
    if (keep >= static_cast<long>(digits.size())) {
        return value;
    }
    if (keep < 0) {
        return negative ? -0.0 : 0.0;
    }
    // A leading 0 takes the carry of 9.99 and stands for the empty part when nothing is kept.
    std::string kept(1, '0');
    kept += digits.substr(0, static_cast<std::size_t>(keep));
    const std::string rest = digits.substr(static_cast<std::size_t>(keep));
    const bool beyondHalf = rest.find_first_not_of('0', 1) != std::string::npos;
    const bool lastOdd = (kept.back() - '0') % 2 == 1;
    if (rest[0] > '5' || (rest[0] == '5' && (beyondHalf || lastOdd))) {
        std::size_t k = kept.size();
        while (kept[k - 1] == '9') {
            kept[--k] = '0';
        }
        ++kept[k - 1];
    }
    std::string rounded(negative ? 1 : 0, '-');
    rounded += kept;
    rounded += 'e';
    rounded += std::to_string(-static_cast<long>(decimals));
    double result = 0.0;
    std::from_chars(rounded.data(), rounded.data() + rounded.size(), result);
    return result;
}

// The shortest text of a single that reads back as the same single, in the number form of
// the component. Seven digits are not always enough, and a single written with more than it
// needs shows digits that the user never typed.
std::string ShortestSingle(float value) {
    std::array<char, 64> buffer{};
    const auto [last, ec] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    double shortest = 0.0;
    std::from_chars(buffer.data(), ec == std::errc{} ? last : buffer.data(), shortest);
    return FormatDouble(shortest);
}

// The shortest display of a single in the units of a conversion (none: its own): the fewest
// significant digits whose text, converted back and made a single, is that single again, so
// that confirming a shown value never changes its bytes.
std::optional<double> ShortestShown(float stored, const UnitConversion* conversion) {
    const double factor = conversion != nullptr ? conversion->factor : 1.0;
    const double offset = conversion != nullptr ? conversion->offset : 0.0;
    const double shown = static_cast<double>(stored) * factor + offset;
    if (!std::isfinite(shown)) {
        return std::nullopt;
    }
    for (int digits = 1; digits <= 17; ++digits) {
        std::array<char, 64> buffer{};
        const auto [last, ec] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), shown,
                                              std::chars_format::scientific, digits - 1);
        double candidate = 0.0;
        std::from_chars(buffer.data(), ec == std::errc{} ? last : buffer.data(), candidate);
        if (static_cast<float>((candidate - offset) / factor) == stored) {
            return candidate;
        }
    }
    return shown;
}

// A scaled value on its scale grid A * 10^B * k, the division by the power of ten giving the
// correctly rounded decimal rather than k times an inexact step.
double GridValue(double k, int32_t a, int32_t b) {
    const double scale = std::pow(10.0, std::abs(b));
    const double value = b < 0 ? k * a / scale : k * a * scale;
    return value == 0.0 ? 0.0 : value;
}

}  // namespace

void SetUnitSystem(UnitSystem system) {
    SystemSlot() = system;
}

UnitSystem CurrentUnitSystem() {
    return SystemSlot();
}

std::shared_ptr<IUnitConverter> FollowingUnitConverter() {
    static const std::shared_ptr<IUnitConverter> converter = std::make_shared<UnitConverter>();
    return converter;
}

// What the converter needs of a type: the type record's own resolution, cached once for the
// dictionary and replayed without its messages.
struct UnitConverter::TypeFacts {
    std::string id;
    TypeClass typeClass = TypeClass::Other;
    std::string unit;
    std::string min;
    std::string max;
    int32_t a = 0;
    int32_t b = 0;
    int32_t c = 0;

    bool Numeric() const { return IsNumericClass(typeClass); }
    bool IsFloat() const { return typeClass == TypeClass::Float; }
};

UnitConverter::UnitConverter(std::optional<UnitSystem> system,
                             std::shared_ptr<const UnitConversionTable> table)
    : system_(system), table_(std::move(table)) {}

UnitConverter::TypeFacts UnitConverter::Facts(const std::string& typeId) const {
    CDBSNVTType type;
    type.ResolveQuietly(typeId);
    TypeFacts facts;
    facts.id = typeId;
    facts.typeClass = ClassOf(type);
    facts.unit = type.ISNVType_Units();
    facts.min = type.StoredMin();
    facts.max = type.StoredMax();
    facts.a = type.ISNVType_ACoef();
    facts.b = type.ISNVType_BCoef();
    facts.c = type.ISNVType_CCoef();
    return facts;
}

const UnitConversion* UnitConverter::ConversionFor(const TypeFacts& facts) const {
    const UnitSystem system = system_.value_or(CurrentUnitSystem());
    if (system != UnitSystem::US || !facts.Numeric() || !table_) {
        return nullptr;
    }
    return table_->Find(facts.id);
}

int16_t UnitConverter::Decimals(const TypeFacts& facts, const UnitConversion* conversion) const {
    if (!facts.Numeric()) {
        return 0;
    }
    if (facts.IsFloat()) {
        return conversion != nullptr ? conversion->usDecimals : kFloatDecimals;
    }
    if (conversion == nullptr) {
        return static_cast<int16_t>(std::clamp(-facts.b, 0, 30));
    }
    if (facts.a == 0) {
        return conversion->usDecimals;
    }
    const double step = std::abs(facts.a) * std::pow(10.0, facts.b);
    // A shown value is off by half a display step at most; back in stored units that must
    // stay below half the scale step, or the stored value would not come back.
    const double shownStep = step * std::abs(conversion->factor);
    const int needed = static_cast<int>(std::floor(-std::log10(shownStep))) + 1;
    return static_cast<int16_t>(std::clamp<int>(needed, conversion->usDecimals, 30));
}

std::string UnitConverter::ToDisplayValue(const std::string& typeId,
                                          const std::string& storedValue) {
    const TypeFacts facts = Facts(typeId);
    const std::optional<double> stored = WholeNumber(storedValue);
    if (!facts.Numeric() || !stored) {
        return storedValue;
    }
    const UnitConversion* conversion = ConversionFor(facts);
    if (facts.IsFloat() && std::fabs(*stored) <= std::numeric_limits<float>::max()) {
        if (const auto shortest = ShortestShown(static_cast<float>(*stored), conversion)) {
            return FormatDouble(*shortest);
        }
    }
    const double value = OnGrid(facts, *stored);
    const double shown =
        conversion != nullptr ? value * conversion->factor + conversion->offset : value;
    return FormatDouble(RoundDecimal(shown, Decimals(facts, conversion)));
}

// The value the bytes of a scaled type hold for a stored value, which may lie between two
// steps of its scale: the raw number worked out as the encoder does (through a single, to
// seven digits, half to even), back on the grid. Shown from there, a value between steps
// shows what the device gets, and confirming it writes the same bytes in either system.
double UnitConverter::OnGrid(const TypeFacts& facts, double stored) const {
    if (facts.IsFloat() || facts.a == 0 || !std::isfinite(stored)) {
        return stored;
    }
    const double x = stored * std::pow(10.0, -facts.b) / facts.a - facts.c;
    if (!(std::fabs(x) < 2147483647.0)) {
        return stored;
    }
    std::array<char, 64> buffer{};
    const auto [last, ec] =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(),
                      static_cast<double>(static_cast<float>(x)), std::chars_format::scientific, 6);
    double single = 0.0;
    std::from_chars(buffer.data(), ec == std::errc{} ? last : buffer.data(), single);
    return GridValue(RoundHalfEven(single) + facts.c, facts.a, facts.b);
}

std::string UnitConverter::FromDisplayValue(const std::string& typeId,
                                            const std::string& displayText) {
    const TypeFacts facts = Facts(typeId);
    std::size_t end = 0;
    const std::optional<double> shown = ReadNumber(displayText, end);
    if (!facts.Numeric() || !shown) {
        return displayText;
    }
    const UnitConversion* conversion = ConversionFor(facts);
    const double stored =
        conversion != nullptr ? (*shown - conversion->offset) / conversion->factor : *shown;
    if (!std::isfinite(stored)) {
        return FormatDouble(stored);
    }
    if (facts.IsFloat()) {
        if (std::fabs(stored) > static_cast<double>(std::numeric_limits<float>::max())) {
            return FormatDouble(stored);
        }
        return ShortestSingle(static_cast<float>(stored));
    }
    if (facts.a == 0) {
        return FormatDouble(stored);  // no scale step: every value encodes as 0 anyway
    }
    // The stored value lies on the scale grid A * 10^B * k; dividing by the power of ten
    // gives the correctly rounded decimal rather than k times an inexact step.
    const double scale = std::pow(10.0, std::abs(facts.b));
    const double steps = facts.b < 0 ? stored * scale / facts.a : stored / scale / facts.a;
    return FormatDouble(GridValue(RoundHalfEven(steps), facts.a, facts.b));
}

std::string UnitConverter::DisplayUnit(const std::string& typeId) {
    const TypeFacts facts = Facts(typeId);
    if (!facts.Numeric()) {
        return {};
    }
    const UnitConversion* conversion = ConversionFor(facts);
    return conversion != nullptr ? conversion->usUnit : facts.unit;
}

double UnitConverter::ParseDisplayNumber(const std::string& displayText) {
    std::size_t end = 0;
    return ReadNumber(displayText, end).value_or(0.0);
}

int16_t UnitConverter::DecimalPlaces(const std::string& typeId) {
    const TypeFacts facts = Facts(typeId);
    return Decimals(facts, ConversionFor(facts));
}

std::string UnitConverter::MinimumFor(const std::string& typeId) {
    return Limit(typeId, true);
}

std::string UnitConverter::MaximumFor(const std::string& typeId) {
    return Limit(typeId, false);
}

std::string UnitConverter::Limit(const std::string& typeId, bool lower) {
    const TypeFacts facts = Facts(typeId);
    if (!facts.Numeric()) {
        return {};
    }
    const std::string& limit = lower ? facts.min : facts.max;
    if (ConversionFor(facts) == nullptr || !WholeNumber(limit)) {
        return DecimalToDisplay(limit);
    }
    // Shown as any value is shown: the largest valid value then reads exactly as the upper
    // limit, never above it, and the limit read back is the dictionary's limit again.
    return ToDisplayValue(typeId, limit);
}

std::string UnitConverter::DefaultFor(const std::string& typeId) {
    const TypeFacts facts = Facts(typeId);
    if (facts.typeClass == TypeClass::Textual) {
        return {};
    }
    if (!facts.Numeric()) {
        return "0";
    }
    const std::optional<double> min = WholeNumber(facts.min);
    const std::optional<double> max = WholeNumber(facts.max);
    if (min && *min > 0.0) {
        return facts.min;
    }
    if (max && *max < 0.0) {
        return facts.max;
    }
    return "0";
}

}  // namespace zerbin
