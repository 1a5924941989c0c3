#include "datatypes/CDBSNVTType.h"

#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <pugixml.hpp>

#include "base/MMain.h"
#include "base/ProcessState.h"
#include "base/SkipMode.h"
#include "base/Xml.h"
#include "datatypes/SnvtDictionary.h"
#include "datatypes/TypeClass.h"
#include "platform/Messages.h"

namespace zerbin {
namespace {

enum class Details { None, Enums, Numeric, Text };

struct ClassFacts {
    TypeClass typeClass;
    const char* luiType;
    Details details;
};

constexpr ClassFacts kClassFacts[] = {
    {TypeClass::Enum, "Logic", Details::Enums},
    {TypeClass::Struct, "Invalid", Details::None},
    {TypeClass::Float, "Float", Details::Numeric},
    {TypeClass::Textual, "Textual", Details::Text},
    {TypeClass::SignedNumeric, "Numeric", Details::Numeric},
    {TypeClass::UnsignedNumeric, "Numeric", Details::Numeric},
    {TypeClass::Bitfield, "Numeric", Details::Numeric},
};

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
    return false;
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

// Resolving reads a handful of elements and numbers for every attribute, output and field of
// every block, yet for one dictionary the outcome for an id never changes. So the outcome is
// worked out once, as the ordered edits the resolution makes, and replayed on each record.
// Replay, not a finished record: resolving clears nothing, the length check looks at the
// length the record ends with, and a number keeps the separator in force when it is resolved.
struct CDBSNVTType::Resolution {
    enum class Kind { Text, Number, Whole, Message, CheckLength };
    struct Edit {
        Kind kind;
        std::string CDBSNVTType::*text = nullptr;
        int32_t CDBSNVTType::*whole = nullptr;
        std::string value;  // the text, the number text before NormalizeDecimal, the message
        int32_t number = 0;
    };
    std::vector<Edit> edits;

    void Text(std::string CDBSNVTType::*field, std::string value) {
        edits.push_back({Kind::Text, field, nullptr, std::move(value), 0});
    }
    void Number(std::string CDBSNVTType::*field, std::string value) {
        edits.push_back({Kind::Number, field, nullptr, std::move(value), 0});
    }
    void Whole(int32_t CDBSNVTType::*field, int32_t value) {
        edits.push_back({Kind::Whole, nullptr, field, {}, value});
    }
    void Message(std::string text) {
        edits.push_back({Kind::Message, nullptr, nullptr, std::move(text), 0});
    }
    void CheckLength() { edits.push_back({Kind::CheckLength, nullptr, nullptr, {}, 0}); }
};

namespace {

// A whole-number key of the details. A key without content keeps the field; a number that
// does not fit 32 bits deliberately leaves 0 rather than the value of an earlier type, so a
// re-resolved record never keeps a length or scale that the new entry does not have.
template <typename Resolution, typename Field>
void ReadWholeNumber(pugi::xml_node node, Field field, Resolution& out) {
    std::string text;
    if (!SkipStep([&] { text = xml::FirstChildText(node); })) {
        return;
    }
    int32_t value = 0;
    SkipStep([&] { value = ToInt32(LeadingNumber(text)); });
    out.Whole(field, value);
}

// The outcomes of one dictionary, dropped when another is installed.
struct ResolutionCache {
    uint64_t generation = 0;
    std::unordered_map<std::string, std::shared_ptr<const CDBSNVTType::Resolution>> byId;
};

// Ids come from files written by others; past this many, start over rather than grow.
constexpr std::size_t kMaxCachedIds = 4096;

}  // namespace

void CDBSNVTType::ResolveByID(const std::string& id) {
    id_ = id;
    Replay(CachedResolution(id));
}

void CDBSNVTType::ResolveQuietly(const std::string& id) {
    id_ = id;
    Replay(CachedResolution(id), true);
}

std::shared_ptr<const CDBSNVTType::Resolution> CDBSNVTType::CachedResolution(
    const std::string& id) {
    ResolutionCache& cache = ProcessState::Get<ResolutionCache>();
    const uint64_t generation = SnvtIndexGeneration();
    if (cache.generation != generation || cache.byId.size() >= kMaxCachedIds) {
        cache.byId.clear();
        cache.generation = generation;
    }
    auto found = cache.byId.find(id);
    if (found == cache.byId.end()) {
        auto resolution = std::make_shared<Resolution>();
        Resolve(id, *resolution);
        found = cache.byId.emplace(id, std::move(resolution)).first;
    }
    return found->second;
}

void CDBSNVTType::Replay(const std::shared_ptr<const Resolution>& resolution, bool quiet) {
    for (const Resolution::Edit& edit : resolution->edits) {
        switch (edit.kind) {
            case Resolution::Kind::Text:
                this->*edit.text = edit.value;
                break;
            case Resolution::Kind::Number:
                SkipStep([&] { this->*edit.text = NormalizeDecimal(edit.value); });
                break;
            case Resolution::Kind::Whole:
                this->*edit.whole = edit.number;
                break;
            case Resolution::Kind::Message:
                if (!quiet) {
                    ShowMessage(edit.value);
                }
                break;
            case Resolution::Kind::CheckLength:
                if (length_ == 0 && !quiet) {
                    ShowMessage("Error: SNVT_" + id_ + " has a bad Length");
                }
                break;
        }
    }
}

void CDBSNVTType::Resolve(const std::string& id, Resolution& out) {
    const std::string notDefined = "Error: SNVT_" + id + " is not defined";
    const pugi::xml_node entry = FindSnvtEntry(id);
    if (!entry) {
        // Every later step goes through the missing entry and would fail in its turn: one
        // message tells the user all there is to know.
        out.Message(notDefined);
        return;
    }
    // A failing step is reported and dropped; the walk goes on with the next one.
    auto step = [&](auto&& body) {
        const bool ran = SkipStep(body);
        if (!ran) {
            out.Message(notDefined);
        }
        return ran;
    };

    for (const pugi::xml_attribute attribute : entry.attributes()) {
        const std::string_view name = xml::BaseNameView(attribute);
        if (EqualsNoCase(name, "FACTOR")) {
            step([&] {
                out.Whole(&CDBSNVTType::factor_, ToInt32(LeadingNumber(attribute.value())));
            });
        } else if (EqualsNoCase(name, "R7REGION")) {
            step([&] {
                out.Whole(&CDBSNVTType::r7Region_, ToInt32(LeadingNumber(attribute.value())));
            });
        }
    }
    for (const pugi::xml_node child : entry.children()) {
        if (xml::IsComment(child)) {
            continue;
        }
        const std::string_view name = xml::BaseNameView(child);
        if (EqualsNoCase(name, "NAME")) {
            step([&] { out.Text(&CDBSNVTType::name_, xml::FirstChildText(child)); });
        } else if (EqualsNoCase(name, "TYPE")) {
            // A TYPE without content has been reported; acting on the word it did not
            // replace would only add a second, misleading message.
            std::string word;
            if (step([&] { word = xml::FirstChildText(child); })) {
                out.Text(&CDBSNVTType::genType_, word);
                ApplyTypeClass(id, entry, word, out);
            }
        }
    }
}

void CDBSNVTType::ApplyTypeClass(const std::string& id, pugi::xml_node entry,
                                 const std::string& word, Resolution& out) {
    const TypeClass parsed = ParseTypeClass(word);
    for (const ClassFacts& facts : kClassFacts) {
        if (parsed != facts.typeClass) {
            continue;
        }
        out.Text(&CDBSNVTType::luiType_, facts.luiType);
        switch (facts.details) {
            case Details::Enums:
                out.Whole(&CDBSNVTType::length_, 1);
                LoadEnums(id, out);
                break;
            case Details::Numeric:
                LoadNumericDetails(entry, out);
                break;
            case Details::Text:
                LoadTextDetails(entry, out);
                break;
            case Details::None:
                break;
        }
        return;
    }
    out.Message("Error: SNVT_" + id + " has a bad type");
}

void CDBSNVTType::LoadEnums(const std::string& id, Resolution& out) {
    std::string desc;
    std::string value;
    SkipStep([&] {
        const pugi::xml_node enums = Need(FindSnvtChild(id, "Enums"));
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
    out.Text(&CDBSNVTType::enumDesc_, Trim(desc));
}

void CDBSNVTType::LoadNumericDetails(pugi::xml_node entry, Resolution& out) {
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

    for (const pugi::xml_node child : entry.children()) {
        if (xml::IsComment(child)) {
            continue;
        }
        const std::string_view name = xml::BaseNameView(child);
        for (const TextKey& textKey : kTextKeys) {
            if (EqualsNoCase(name, textKey.key)) {
                SkipStep([&] {
                    std::string text = xml::FirstChildText(child);
                    if (textKey.number) {
                        out.Number(textKey.field, std::move(text));
                    } else {
                        out.Text(textKey.field, std::move(text));
                    }
                });
            }
        }
        for (const WholeKey& wholeKey : kWholeKeys) {
            if (EqualsNoCase(name, wholeKey.key)) {
                ReadWholeNumber(child, wholeKey.field, out);
            }
        }
    }
    out.CheckLength();
}

void CDBSNVTType::LoadTextDetails(pugi::xml_node entry, Resolution& out) {
    for (const pugi::xml_node child : entry.children()) {
        if (!xml::IsComment(child) && EqualsNoCase(xml::BaseNameView(child), "LENGTH")) {
            ReadWholeNumber(child, &CDBSNVTType::length_, out);
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
