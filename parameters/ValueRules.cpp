#include "parameters/ValueRules.h"

#include <cmath>
#include <optional>

#include "base/MMain.h"
#include "base/Utf8.h"
#include "datatypes/EnumEntries.h"
#include "datatypes/TypeClass.h"
#include "interfaces/Error.h"
#include "interfaces/IField.h"
#include "interfaces/ISNVType.h"

namespace zerbin {
namespace {

std::optional<double> NumberOf(const std::string& text) {
    try {
        return LocaleDouble(NormalizeDecimal(text));
    } catch (const Error&) {
        return std::nullopt;
    }
}

std::string CheckText(const std::string& text, int32_t length) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size();) {
        const uint32_t c = NextCodePoint(text, i);
        if (!FitsTextValue(c)) {
            if (c < 0x20 || (c >= 0x7F && c <= 0x9F)) {
                return "the text holds a control character (a tab, a line end)";
            }
            std::string character;
            AppendUtf8(character, c);
            return "'" + character + "' is not in the 8-bit code page of texts";
        }
        ++count;
    }
    if (count > static_cast<std::size_t>(std::max(length, 0))) {
        return "'" + text + "' is longer than the " + std::to_string(length) +
               " characters the type takes";
    }
    return {};
}

// The limits of a value: the attribute's own where it has them, else its type's.
struct Limits {
    std::string min, max;
};

std::string CheckNumber(const std::string& text, TypeClass typeClass, int32_t length,
                        const Limits& limits) {
    const std::optional<double> number = NumberOf(text);
    if (!number || !std::isfinite(*number)) {
        return "'" + text + "' is not a number";
    }
    if (typeClass == TypeClass::Bitfield) {
        const double top = length == 1 ? 255.0 : 65535.0;
        if (*number != std::floor(*number) || *number < 0.0 || *number > top) {
            return text + " is no whole number from 0 to " + FormatDouble(top);
        }
    }
    const std::optional<double> min = NumberOf(limits.min);
    const std::optional<double> max = NumberOf(limits.max);
    if ((min && *number < *min) || (max && *number > *max)) {
        return text + " is outside the limits " + (min ? limits.min : std::string("-")) + " to " +
               (max ? limits.max : std::string("-"));
    }
    return {};
}

// A value of one type: the text to write (a label's code) or the objection.
ValueVerdict CheckTyped(ISNVType& type, const std::string& text, const Limits& limits) {
    const TypeClass typeClass = ClassOf(type);
    switch (typeClass) {
        case TypeClass::Enum: {
            const std::optional<int16_t> code =
                EnumCodeOf(EnumEntries(type.ISNVType_EnumDesc()), text);
            if (!code) {
                return {text, "'" + text + "' is no code or name of the list"};
            }
            return {std::to_string(*code), {}};
        }
        case TypeClass::Textual:
            return {text, CheckText(text, type.ISNVType_Length())};
        case TypeClass::Float:
        case TypeClass::SignedNumeric:
        case TypeClass::UnsignedNumeric:
        case TypeClass::Bitfield:
            return {text, CheckNumber(text, typeClass, type.ISNVType_Length(), limits)};
        default:
            return {text, {}};
    }
}

Limits Or(const std::string& min, const std::string& max, ISNVType& type) {
    return {min.empty() ? type.ISNVType_Min() : min, max.empty() ? type.ISNVType_Max() : max};
}

ValueVerdict CheckStruct(IFields& fields, const std::string& text) {
    const std::vector<std::shared_ptr<IField>> members = fields.IFields_NewEnum();
    std::vector<std::string> tokens;
    std::size_t from = 0;
    while (true) {
        const std::size_t blank = text.find(' ', from);
        tokens.push_back(text.substr(from, blank - from));
        if (blank == std::string::npos) {
            break;
        }
        from = blank + 1;
    }
    if (tokens.size() != members.size()) {
        return {text, "'" + text + "' needs " + std::to_string(members.size()) +
                          " values separated by single blanks, one for each field"};
    }
    std::string value;
    for (std::size_t i = 0; i < members.size(); ++i) {
        IField& field = *members[i];
        const std::shared_ptr<ISNVType> type = field.IField_SNVTType();
        ValueVerdict verdict{tokens[i], {}};
        if (type) {
            verdict = CheckTyped(*type, tokens[i], Or({}, {}, *type));
        }
        if (!verdict.Taken()) {
            return {text, field.IField_Name() + ": " + verdict.objection};
        }
        value += (i == 0 ? "" : " ") + verdict.value;
    }
    return {value, {}};
}

}  // namespace

bool FitsTextValue(char32_t c) {
    if (c < 0x20 || (c >= 0x7F && c <= 0x9F)) {
        return false;
    }
    if (c < 0x80) {
        return true;
    }
    // The encoder's own table, so that what is taken is exactly what the bytes keep.
    for (uint32_t byte = 0x80; byte <= 0xFF; ++byte) {
        if (Windows1252CodePoint(static_cast<uint8_t>(byte)) == c) {
            return true;
        }
    }
    return false;
}

ValueVerdict CheckValue(IAttribute& attribute, const std::string& text) {
    const std::shared_ptr<ISNVType> type = attribute.IAttribute_SNVTType();
    if (!type) {
        return {text, {}};
    }
    if (ClassOf(*type) == TypeClass::Struct) {
        const std::shared_ptr<IFields> fields = attribute.IAttribute_Fields();
        return fields ? CheckStruct(*fields, text) : ValueVerdict{text, {}};
    }
    return CheckTyped(*type, text,
                      Or(attribute.IAttribute_Min(), attribute.IAttribute_Max(), *type));
}

std::vector<std::pair<std::string, std::string>> ValueChoices(IAttribute& attribute) {
    std::vector<std::pair<std::string, std::string>> choices;
    const std::shared_ptr<ISNVType> type = attribute.IAttribute_SNVTType();
    if (!type || ClassOf(*type) != TypeClass::Enum) {
        return choices;
    }
    for (const EnumEntry& entry : EnumEntries(type->ISNVType_EnumDesc())) {
        choices.emplace_back(std::to_string(entry.code), entry.label);
    }
    return choices;
}

}  // namespace zerbin
