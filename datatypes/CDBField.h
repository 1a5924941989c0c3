// One field of a structured value: name, own type record, stored value, limits and its byte
// offset inside the structure.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "datatypes/ImageDigits.h"
#include "interfaces/IField.h"
#include "interfaces/IHostServices.h"
#include "interfaces/IUnitsProvider.h"

namespace zerbin {

class CDBSNVTType;

class CDBField : public IField {
public:
    CDBField();

    // IField
    bool IField_IsConnected() override;
    std::shared_ptr<IFields> IField_Fields() override;
    int32_t IField_Offset() override;
    std::string IField_Name() override;
    std::string IField_GlobalKey() override;
    std::string IField_DefaultValue() override;
    std::string IField_DispMin() override;
    std::string IField_DispMax() override;
    std::string IField_DispDefault() override;
    std::string IField_DispValue() override;
    std::string IField_Value() override;
    void IField_Value(const std::string& v) override;
    void IField_SetValue() override;
    std::shared_ptr<ISNVType> IField_SNVTType() override;
    int32_t IField_Index() override;
    int32_t IField_NodeType() override;
    void IField_Import() override;
    void IField_Export() override;
    void IField_Save() override;
    void IField_Load() override;
    std::shared_ptr<IObject> IField_Parent() override;
    std::string IField_ExtendedKey() override;
    std::string IField_RefValue() override;
    void IField_RefValue(const std::string& v) override;
    void IField_IsDisplayUsable(bool v) override;

    // Public, outside the interface.
    // The converter of the owning attribute's block; throws when the field has no parent.
    std::shared_ptr<IUnitConverter> UnitsManager();
    // Sets the default and the current value: a loaded default is also the value.
    void DefaultValue(const std::string& v);
    std::string IField_R7AliasKey();
    void IField_R7AliasKey(const std::string& v);

    // Internal.
    void SetNodeType(int32_t v);
    void SetName(const std::string& v);
    // A new record resolved from the dictionary; the limits start as the dictionary's.
    void LoadType(const std::string& typeId);
    void SetIndex(int32_t v);
    void SetOffset(int32_t v);
    // The owning attribute, which hands out the converter.
    void SetParent(std::shared_ptr<IUnitsProvider> attribute);
    // GlobalKey = prefix + "\" + Name.
    void SetGlobalKey(const std::string& prefix);
    void SetExtendedKey(const std::string& prefix);
    void SetFieldMin(const std::string& v);
    void SetFieldMax(const std::string& v);
    std::string FieldMin();
    std::string FieldMax();
    // The concrete record, for the owning attribute.
    std::shared_ptr<CDBSNVTType> Type();
    // The record for reading in place; unlike Type() it is not the field's own to change.
    const CDBSNVTType& Record() const;
    // Internal. The field as its definition left it, with a record of its own, under parent.
    std::shared_ptr<CDBField> CopyFor(std::shared_ptr<IUnitsProvider> parent) const;
    // Writes this field's digits at Offset + position; the image never grows. Throws when a
    // coefficient does not fit 16 bits or the place starts past the end of the image.
    std::string WriteStream(std::string image, int32_t position);
    std::string WriteIntelStream(std::string image, int32_t position);
    // The digits this field may write for a structure at position, and whether it writes
    // what prototype writes there.
    DigitRange ImageRange(int32_t position) const;
    bool SameImageAs(const CDBField& prototype) const;

private:
    std::string Write(std::string image, int32_t position, bool intel);
    // The record to change or hand out: a shared one is copied first.
    CDBSNVTType& OwnType();

    std::string globalKey_;
    std::string defaultValue_;
    std::string name_;
    std::string value_;
    int32_t index_ = 0;
    int32_t offset_ = 0;
    std::shared_ptr<CDBSNVTType> snvtType_;
    // Set while the record is shared with the field this one was copied from or to; mutable
    // because copying marks the source as well.
    mutable bool sharedType_ = false;
    int32_t nodeType_ = 0;
    std::shared_ptr<IUnitsProvider> parent_;
    std::string min_;
    std::string max_;
    std::string extendedKey_;
};

}  // namespace zerbin
