// One field of a structured value, and the ordered collection of them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "interfaces/IObject.h"
#include "interfaces/ISNVType.h"

namespace zerbin {

struct IFields;

struct IField : virtual IObject {
    virtual bool IField_IsConnected() = 0;
    virtual std::shared_ptr<IFields> IField_Fields() = 0;
    // Offset of the field's first byte from the first byte of the structure.
    virtual int32_t IField_Offset() = 0;
    virtual std::string IField_Name() = 0;
    virtual std::string IField_GlobalKey() = 0;
    virtual std::string IField_DefaultValue() = 0;
    virtual std::string IField_DispMin() = 0;
    virtual std::string IField_DispMax() = 0;
    virtual std::string IField_DispDefault() = 0;
    virtual std::string IField_DispValue() = 0;
    virtual std::string IField_Value() = 0;
    // Stores the text as it is: no check, no conversion.
    virtual void IField_Value(const std::string& v) = 0;
    virtual void IField_SetValue() = 0;
    virtual std::shared_ptr<ISNVType> IField_SNVTType() = 0;
    virtual int32_t IField_Index() = 0;
    virtual int32_t IField_NodeType() = 0;
    virtual void IField_Import() = 0;
    virtual void IField_Export() = 0;
    virtual void IField_Save() = 0;
    virtual void IField_Load() = 0;
    virtual std::shared_ptr<IObject> IField_Parent() = 0;
    virtual std::string IField_ExtendedKey() = 0;
    virtual std::string IField_RefValue() = 0;
    virtual void IField_RefValue(const std::string& v) = 0;
    virtual void IField_IsDisplayUsable(bool v) = 0;
};

struct IFields : virtual IObject {
    virtual int32_t IFields_Count() = 0;
    // By key without regard to case, else by LeadingNumber of the key as a 1-based position.
    virtual std::shared_ptr<IField> IFields_Item(const std::string& Key) = 0;
    virtual std::vector<std::shared_ptr<IField>> IFields_NewEnum() = 0;
    // Always 0: the structure's length is the sum its attribute works out.
    virtual int32_t IFields_Length() = 0;
};

}  // namespace zerbin
