#include "base/MMain.h"

#include <charconv>
#include <clocale>
#include <cmath>
#include <cstring>
#include <limits>
#include <string_view>
#include <system_error>
#include <utility>

#include "base/CheckedMath.h"
#include "base/ProcessState.h"
#include "base/Xml.h"
#include "interfaces/Error.h"

namespace zerbin {
namespace {

// The two values every object of the process shares.
struct SharedValues {
    std::shared_ptr<const pugi::xml_document> dictionary;
    std::string separator = ".";
};

std::shared_ptr<const pugi::xml_document>& DictionarySlot() {
    return ProcessState::Get<SharedValues>().dictionary;
}

std::string& SeparatorSlot() {
    return ProcessState::Get<SharedValues>().separator;
}

}  // namespace

// ---- Process-wide values ------------------------------------------------------------------

std::shared_ptr<const pugi::xml_document> SnvtDictionary() {
    return DictionarySlot();
}

const pugi::xml_document* SnvtDictionaryAddress() {
    return DictionarySlot().get();
}

void SetSnvtDictionary(std::shared_ptr<const pugi::xml_document> dictionary) {
    DictionarySlot() = std::move(dictionary);
}

const std::string& DecimalSeparator() {
    return SeparatorSlot();
}

void DetectDecimalSeparator() {
    // The numeric locale's decimal point, which is what the C library's formatting writes;
    // asked of the locale directly, since every block's construction asks again.
    const char* point = std::localeconv()->decimal_point;
    const bool comma = point != nullptr && std::strchr(point, ',') != nullptr;
    SeparatorSlot().assign(1, comma ? ',' : '.');
}

std::string JoinKey(const std::string& prefix, const std::string& name) {
    std::string key;
    key.reserve(prefix.size() + 1 + name.size());
    key.append(prefix).append(1, '\\').append(name);
    return key;
}

// ---- Tokens, hexadecimal digits, reference codes -----------------------------------------

std::string NthToken(const std::string& text, int32_t index, const std::string& separator) {
    if (text.empty() || separator.empty() || index < 0) {
        return {};
    }
    if (index == 0) {
        // Deliberately empty without a separator: enumeration lists end at the first entry
        // that yields no token, and a value without separator must not pass for a token.
        const std::size_t hit = text.find(separator);
        return hit == std::string::npos ? std::string{} : text.substr(0, hit);
    }
    std::size_t hit = std::string::npos;
    std::size_t from = 0;
    for (int32_t n = 0; n < index; ++n) {
        hit = text.find(separator, from);
        if (hit == std::string::npos) {
            return {};
        }
        from = hit + 1;
    }
    std::size_t next = text.find(separator, hit + 1);
    if (next == std::string::npos) {
        next = text.size();
    }
    return text.substr(hit + 1, next - hit - 1);
}

std::string HexByte(int32_t& value) {
    // The clamp is written back on purpose: callers go on using the limited value.
    if (value > 255) {
        value = 255;
    }
    static constexpr char kDigits[] = "0123456789ABCDEF";
    const auto low = static_cast<uint32_t>(value) & 0xFFu;
    return {kDigits[low >> 4], kDigits[low & 0xFu]};
}

std::string HexWord(int32_t& value) {
    if (value > 65535) {
        value = 65535;
    }
    // C++ division truncates towards zero and the remainder keeps the value's sign, which is
    // the split the image expects for negative values (-300 gives FF and D4).
    int32_t high = value / 256;
    int32_t low = value % 256;
    return HexByte(high) + HexByte(low);
}

std::string HexByteOf(int32_t value) {
    return HexByte(value);
}

std::string HexWordOf(int32_t value) {
    return HexWord(value);
}

int32_t NvReferenceCode(int32_t first, int32_t second) {
    return CheckedAdd(CheckedAdd(CheckedMul(second, 256), 16384), first);
}

// ---- XML -----------------------------------------------------------------------------------

pugi::xml_node AppendElement(pugi::xml_document& /*doc*/, pugi::xml_node parent,
                             const std::string& name, const std::string& text) {
    pugi::xml_node element = xml::AppendChildElement(parent, name);
    if (text != kNoTextField) {
        xml::AppendText(element, text);
    }
    return element;
}

pugi::xml_node AppendAttributeElement(pugi::xml_document& /*doc*/, pugi::xml_node parent,
                                      const std::string& name, const std::string& attrName,
                                      const std::string& attrValue) {
    // Checked before the element goes in, so a bad attribute name leaves no bare element.
    if (!xml::IsValidName(attrName)) {
        throw Error("'" + attrName + "' is not a valid XML name");
    }
    pugi::xml_node element = xml::AppendChildElement(parent, name);
    xml::SetAttribute(element, attrName, attrValue);
    return element;
}

std::string BoolDigit(bool flag) {
    return flag ? "1" : "0";
}

// ---- Text ----------------------------------------------------------------------------------

std::string UpperCase(std::string text) {
    for (char& c : text) {
        c = AsciiUpper(c);
    }
    return text;
}

std::string Trim(const std::string& text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos) {
        return {};
    }
    const std::size_t last = text.find_last_not_of(' ');
    return text.substr(first, last - first + 1);
}

}  // namespace zerbin
