#include "datatypes/CDBSNVTType.h"

#include <pugixml.hpp>

#include "app_object/MMain.h"
#include "app_object/SkipMode.h"
#include "datatypes/SnvtDictionary.h"
#include "platform/Messages.h"
#include "platform/Xml.h"

namespace zerbin {
namespace {

enum class Details { None, Enums, Numeric, Text };

struct TypeClass {
    const char* word;  // the TYPE text, compared exactly
    const char* luiType;
    Details details;
};

constexpr TypeClass kTypeClasses[] = {
    {"Enum", "Logic", Details::Enums},
    {"Struct", "Invalid", Details::None},
    {"Float", "Float", Details::Numeric},
    {"Textual", "Textual", Details::Text},
    {"SignedNumeric", "Numeric", Details::Numeric},
    {"UnsignedNumeric", "Numeric", Details::Numeric},
    {"Bitfield", "Numeric", Details::Numeric},
};

std::string KeyOf(pugi::xml_node node) {
    return UpperCase(xml::BaseName(node));
}

// A whole-number key of the details. A key without content keeps the field; a number that
// does not fit 32 bits deliberately leaves 0 rather than the value of an earlier type, so a
// re-resolved record never keeps a length or scale that the new entry does not have.
void ReadWholeNumber(pugi::xml_node node, int32_t& field) {
    std::string text;
    if (!SkipStep([&] { text = xml::FirstChildText(node); })) {
        return;
    }
    if (!SkipStep([&] { field = ToInt32(LeadingNumber(text)); })) {
        field = 0;
    }
}

}  // namespace

// ---- ISNVType ------------------------------------------------------------------------------

std::string CDBSNVTType::ISNVType_ID() {
    return id_;
}

int32_t CDBSNVTType::ISNVType_R7Region() {
    return r7Region_;
}

int32_t CDBSNVTType::ISNVType_Factor() {
    return factor_;
}

int32_t CDBSNVTType::ISNVType_ACoef() {
    return aCoef_;
}

int32_t CDBSNVTType::ISNVType_BCoef() {
    return bCoef_;
}

int32_t CDBSNVTType::ISNVType_CCoef() {
    return cCoef_;
}

std::string CDBSNVTType::ISNVType_GenType() {
    return genType_;
}

std::string CDBSNVTType::ISNVType_LUIType() {
    return luiType_;
}

std::string CDBSNVTType::ISNVType_InvalidValue() {
    return invalidValue_;
}

std::string CDBSNVTType::ISNVType_Name() {
    return name_;
}

std::string CDBSNVTType::ISNVType_Min() {
    return DecimalToDisplay(min_);
}

std::string CDBSNVTType::ISNVType_Max() {
    return DecimalToDisplay(max_);
}

std::string CDBSNVTType::ISNVType_Units() {
    return units_;
}

std::string CDBSNVTType::ISNVType_BACnetUnits() {
    return bacnetUnits_;
}

std::string CDBSNVTType::ISNVType_EnumDesc() {
    return enumDesc_;
}

int32_t CDBSNVTType::ISNVType_Length() {
    return length_;
}

bool CDBSNVTType::ISNVType_HasField() {
    return hasField_;
}

// ---- IEnumType -----------------------------------------------------------------------------

std::string CDBSNVTType::IEnumType_EnumDesc() {
    return enumDesc_;
}

void CDBSNVTType::IEnumType_EnumDesc(const std::string& desc) {
    enumDesc_ = desc;
}

bool CDBSNVTType::IEnumType_IsEnumType() {
    // Unlike the TYPE key, this ignores case: "ENUM" is a bad type and still an enumeration.
    return EqualsNoCase(genType_, "enum");
}

// ---- Internal ------------------------------------------------------------------------------

void CDBSNVTType::ResolveByID(const std::string& id) {
    id_ = id;
    const std::string notDefined = "Error: SNVT_" + id + " is not defined";
    const pugi::xml_node entry = FindSnvtEntry(id);
    if (!entry) {
        // Every later step goes through the missing entry and would fail in its turn: one
        // message tells the user all there is to know.
        ShowMessage(notDefined);
        return;
    }
    // A failing step is reported and dropped; the walk goes on with the next one.
    auto step = [&](auto&& body) {
        const bool ran = SkipStep(body);
        if (!ran) {
            ShowMessage(notDefined);
        }
        return ran;
    };

    for (const pugi::xml_attribute attribute : entry.attributes()) {
        const std::string key = UpperCase(xml::BaseName(attribute));
        if (key == "FACTOR") {
            step([&] { factor_ = ToInt32(LeadingNumber(attribute.value())); });
        } else if (key == "R7REGION") {
            step([&] { r7Region_ = ToInt32(LeadingNumber(attribute.value())); });
        }
    }
    for (const pugi::xml_node child : entry.children()) {
        if (xml::IsComment(child)) {
            continue;
        }
        const std::string key = KeyOf(child);
        if (key == "NAME") {
            step([&] { name_ = xml::FirstChildText(child); });
        } else if (key == "TYPE") {
            // A TYPE without content has been reported; acting on the word it did not
            // replace would only add a second, misleading message.
            if (step([&] { genType_ = xml::FirstChildText(child); })) {
                ApplyTypeClass();
            }
        }
    }
}

void CDBSNVTType::ApplyTypeClass() {
    for (const TypeClass& typeClass : kTypeClasses) {
        if (genType_ != typeClass.word) {
            continue;
        }
        luiType_ = typeClass.luiType;
        switch (typeClass.details) {
            case Details::Enums:
                length_ = 1;
                LoadEnums();
                break;
            case Details::Numeric:
                LoadNumericDetails();
                break;
            case Details::Text:
                LoadTextDetails();
                break;
            case Details::None:
                break;
        }
        return;
    }
    ShowMessage("Error: SNVT_" + id_ + " has a bad type");
}

void CDBSNVTType::LoadEnums() {
    std::string desc;
    std::string value;
    SkipStep([&] {
        const pugi::xml_node enums = Need(FindSnvtChild(id_, "Enums"));
        for (const pugi::xml_node child : enums.children()) {
            if (xml::IsComment(child)) {
                continue;
            }
            // Deliberate: a child without text keeps the value before it, so it repeats the
            // previous entry's value under its own label.
            SkipStep([&] { value = xml::FirstChildText(child); });
            desc += value + "," + xml::BaseName(child) + ";";
        }
    });
    enumDesc_ = Trim(desc);
}

void CDBSNVTType::LoadNumericDetails() {
    struct TextKey {
        const char* key;
        std::string CDBSNVTType::*field;
        bool number;  // stored after NormalizeDecimal
    };
    static const TextKey kTextKeys[] = {
        {"UNIT", &CDBSNVTType::units_, false},
        {"BACNETUNIT", &CDBSNVTType::bacnetUnits_, false},
        {"MIN", &CDBSNVTType::min_, true},
        {"MAX", &CDBSNVTType::max_, true},
        {"INVALIDVALUE", &CDBSNVTType::invalidValue_, true},
    };
    struct WholeKey {
        const char* key;
        int32_t CDBSNVTType::*field;
    };
    static const WholeKey kWholeKeys[] = {
        {"LENGTH", &CDBSNVTType::length_},
        {"A_COEF", &CDBSNVTType::aCoef_},
        {"B_COEF", &CDBSNVTType::bCoef_},
        {"C_COEF", &CDBSNVTType::cCoef_},
    };

    for (const pugi::xml_node child : FindSnvtEntry(id_).children()) {
        if (xml::IsComment(child)) {
            continue;
        }
        const std::string key = KeyOf(child);
        for (const TextKey& textKey : kTextKeys) {
            if (key == textKey.key) {
                SkipStep([&] {
                    const std::string text = xml::FirstChildText(child);
                    this->*textKey.field = textKey.number ? NormalizeDecimal(text) : text;
                });
            }
        }
        for (const WholeKey& wholeKey : kWholeKeys) {
            if (key == wholeKey.key) {
                ReadWholeNumber(child, this->*wholeKey.field);
            }
        }
    }
    if (length_ == 0) {
        ShowMessage("Error: SNVT_" + id_ + " has a bad Length");
    }
}

void CDBSNVTType::LoadTextDetails() {
    for (const pugi::xml_node child : FindSnvtEntry(id_).children()) {
        if (!xml::IsComment(child) && KeyOf(child) == "LENGTH") {
            ReadWholeNumber(child, length_);
        }
    }
}

void CDBSNVTType::SetGenType(const std::string& v) {
    genType_ = v;
}

void CDBSNVTType::SetLength(int32_t v) {
    length_ = v;
}

void CDBSNVTType::SetEnumDesc(const std::string& v) {
    enumDesc_ = v;
}

void CDBSNVTType::SetMin(const std::string& v) {
    min_ = v;
}

void CDBSNVTType::SetMax(const std::string& v) {
    max_ = v;
}

}  // namespace zerbin
