#include "datatypes/CDBField.h"

#include <cstdint>
#include <limits>
#include <utility>

#include "base/CheckedMath.h"
#include "base/MMain.h"
#include "base/SkipMode.h"
#include "datatypes/CDBSNVTType.h"
#include "datatypes/SNVTDataConversion.h"
#include "datatypes/TypeClass.h"
#include "interfaces/Error.h"

namespace zerbin {
namespace {

enum class Shown { Enum, Numeric, Plain };

Shown ShownAs(TypeClass typeClass) {
    if (typeClass == TypeClass::Enum) {
        return Shown::Enum;
    }
    if (IsNumericClass(typeClass)) {
        return Shown::Numeric;
    }
    return Shown::Plain;
}

// Limits and the default are shown in the dictionary's unit, never through the converter;
// plain is what a type without a unit or labels shows.
std::string ShowInTypeUnit(CDBSNVTType& type, const std::string& stored, std::string plain) {
    switch (ShownAs(ClassOf(type))) {
        case Shown::Enum:
            return FormatDisplayValue(DecimalToDisplay(stored), type.ISNVType_EnumDesc());
        case Shown::Numeric:
            return DecimalToDisplay(stored) + " " + type.ISNVType_Units();
        case Shown::Plain:
            break;
    }
    return plain;
}

}  // namespace

CDBField::CDBField() = default;

std::shared_ptr<CDBField> CDBField::CopyFor(std::shared_ptr<IUnitsProvider> parent) const {
    auto copy = std::make_shared<CDBField>(*this);
    // Both hold the record now; whichever changes it or hands it out copies it first.
    sharedType_ = snvtType_ != nullptr;
    copy->sharedType_ = sharedType_;
    copy->parent_ = std::move(parent);
    return copy;
}

// ---- IField --------------------------------------------------------------------------------

bool CDBField::IField_IsConnected() {
    return false;
}

std::shared_ptr<IFields> CDBField::IField_Fields() {
    return nullptr;
}

int32_t CDBField::IField_Offset() {
    return offset_;
}

std::string CDBField::IField_Name() {
    return name_;
}

std::string CDBField::IField_GlobalKey() {
    return globalKey_;
}

std::string CDBField::IField_DefaultValue() {
    return defaultValue_;
}

std::string CDBField::IField_DispMin() {
    return ShowInTypeUnit(Need(snvtType_), min_, DecimalToDisplay(min_));
}

std::string CDBField::IField_DispMax() {
    return ShowInTypeUnit(Need(snvtType_), max_, DecimalToDisplay(max_));
}

std::string CDBField::IField_DispDefault() {
    return ShowInTypeUnit(Need(snvtType_), defaultValue_, Trim(defaultValue_));
}

std::string CDBField::IField_DispValue() {
    CDBSNVTType& type = Need(snvtType_);
    switch (ShownAs(ClassOf(type))) {
        case Shown::Enum:
            return FormatDisplayValue(DecimalToDisplay(value_), type.ISNVType_EnumDesc());
        case Shown::Numeric: {
            // Only the current value goes through the converter; default and limits are
            // shown in the dictionary's unit.
            IUnitConverter& converter = Need(UnitsManager());
            const std::string typeId = type.ISNVType_ID();
            return converter.ToDisplayValue(typeId, DecimalToDisplay(value_)) + " " +
                   converter.DisplayUnit(typeId);
        }
        case Shown::Plain:
            break;
    }
    return Trim(value_);
}

std::string CDBField::IField_Value() {
    return value_;
}

void CDBField::IField_Value(const std::string& v) {
    value_ = v;
}

void CDBField::IField_SetValue() {}

std::shared_ptr<ISNVType> CDBField::IField_SNVTType() {
    return Type();
}

const CDBSNVTType& CDBField::Record() const {
    return Need(snvtType_);
}

CDBSNVTType& CDBField::OwnType() {
    if (sharedType_) {
        snvtType_ = Need(snvtType_).Copy();
        sharedType_ = false;
    }
    return Need(snvtType_);
}

int32_t CDBField::IField_Index() {
    return index_;
}

int32_t CDBField::IField_NodeType() {
    return nodeType_;
}

void CDBField::IField_Import() {}

void CDBField::IField_Export() {}

void CDBField::IField_Save() {}

void CDBField::IField_Load() {}

std::shared_ptr<IObject> CDBField::IField_Parent() {
    return parent_;
}

std::string CDBField::IField_ExtendedKey() {
    return extendedKey_;
}

std::string CDBField::IField_RefValue() {
    return {};
}

void CDBField::IField_RefValue(const std::string& /*v*/) {}

void CDBField::IField_IsDisplayUsable(bool /*v*/) {}

// ---- Public, outside the interface ---------------------------------------------------------

std::shared_ptr<IUnitConverter> CDBField::UnitsManager() {
    return Need(parent_).UnitsManager();
}

void CDBField::DefaultValue(const std::string& v) {
    defaultValue_ = v;
    value_ = v;
}

std::string CDBField::IField_R7AliasKey() {
    return {};
}

void CDBField::IField_R7AliasKey(const std::string& /*v*/) {}

// ---- Internal ------------------------------------------------------------------------------

void CDBField::SetNodeType(int32_t v) {
    nodeType_ = v;
}

void CDBField::SetName(const std::string& v) {
    name_ = v;
}

void CDBField::LoadType(const std::string& typeId) {
    snvtType_ = std::make_shared<CDBSNVTType>();
    sharedType_ = false;
    snvtType_->ResolveByID(typeId);
    min_ = snvtType_->ISNVType_Min();
    max_ = snvtType_->ISNVType_Max();
}

void CDBField::SetIndex(int32_t v) {
    index_ = v;
}

void CDBField::SetOffset(int32_t v) {
    offset_ = v;
}

void CDBField::SetParent(std::shared_ptr<IUnitsProvider> attribute) {
    parent_ = std::move(attribute);
}

void CDBField::SetGlobalKey(const std::string& prefix) {
    globalKey_ = JoinKey(prefix, name_);
}

void CDBField::SetExtendedKey(const std::string& prefix) {
    extendedKey_ = JoinKey(prefix, name_);
}

void CDBField::SetFieldMin(const std::string& v) {
    OwnType().SetMin(v);
    min_ = v;
}

void CDBField::SetFieldMax(const std::string& v) {
    OwnType().SetMax(v);
    max_ = v;
}

std::string CDBField::FieldMin() {
    return min_;
}

std::string CDBField::FieldMax() {
    return max_;
}

std::shared_ptr<CDBSNVTType> CDBField::Type() {
    if (snvtType_) {
        OwnType();  // the caller may change what it is handed
    }
    return snvtType_;
}

std::string CDBField::WriteStream(std::string image, int32_t position) {
    return Write(std::move(image), position, false);
}

std::string CDBField::WriteIntelStream(std::string image, int32_t position) {
    return Write(std::move(image), position, true);
}

std::string CDBField::Write(std::string image, int32_t position, bool intel) {
    CDBSNVTType& type = Need(snvtType_);
    const TypeClass typeClass = ClassOf(type);
    const int32_t length = type.ISNVType_Length();
    const int16_t a = NarrowToInt16(type.ISNVType_ACoef());
    const int16_t b = NarrowToInt16(type.ISNVType_BCoef());
    const int16_t c = NarrowToInt16(type.ISNVType_CCoef());
    const std::string digits = EncodeDigits(value_, typeClass, length, a, b, c, intel);
    // Each field is turned by itself: its place is the same in both byte orders.
    const int32_t place = CheckedInt32(static_cast<int64_t>(offset_) + position);
    const int32_t digitPosition = CheckedInt32(static_cast<int64_t>(place) * 2);
    const int32_t maxDigits = CheckedInt32(static_cast<int64_t>(length) * 2);
    OverwriteDigits(image, digitPosition, digits, maxDigits);
    return image;
}

DigitRange CDBField::ImageRange(int32_t position) const {
    const int64_t first = (static_cast<int64_t>(offset_) + position) * 2;
    return {first, first + static_cast<int64_t>(Need(snvtType_).ISNVType_Length()) * 2};
}

bool CDBField::SameImageAs(const CDBField& prototype) const {
    return offset_ == prototype.offset_ && value_ == prototype.value_ && snvtType_ &&
           prototype.snvtType_ && SameEncoding(*snvtType_, *prototype.snvtType_);
}

}  // namespace zerbin
