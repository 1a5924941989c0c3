// A configuration parameter of a block, and the ordered keyed collection of them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "interfaces/IField.h"
#include "interfaces/IObject.h"
#include "interfaces/ISNVType.h"
#include "interfaces/IcbkAppObject.h"

namespace zerbin {

struct IAppObject;

struct IAttribute : virtual IObject {
    virtual std::shared_ptr<IAppObject> IAttribute_Parent() = 0;
    virtual bool IAttribute_Visible() = 0;
    // Opens the value editor modally; does nothing for an attribute without one.
    virtual void IAttribute_SetValue() = 0;
    virtual bool IAttribute_IsUnit() = 0;
    virtual std::string IAttribute_Description() = 0;
    virtual std::string IAttribute_Value() = 0;
    virtual std::string IAttribute_DispValue() = 0;
    virtual std::string IAttribute_DispMin() = 0;
    virtual std::string IAttribute_DispMax() = 0;
    virtual std::string IAttribute_DispDefault() = 0;
    // The value write and everything it sets off; raises nothing to the caller.
    virtual void IAttribute_Value(std::string Text) = 0;
    virtual std::string IAttribute_Name() = 0;
    virtual int32_t IAttribute_NodeType() = 0;
    virtual std::string IAttribute_GlobalKey() = 0;
    virtual std::shared_ptr<ISNVType> IAttribute_SNVTType() = 0;
    virtual void IAttribute_BackToDefault() = 0;
    virtual std::string IAttribute_DefaultValue() = 0;
    virtual std::string IAttribute_Tag() = 0;
    virtual void IAttribute_Tag(std::string v) = 0;
    virtual std::shared_ptr<IFields> IAttribute_Fields() = 0;
    // Appends a listener; nothing is replaced or removed.
    virtual void IAttribute_CallBack(std::shared_ptr<IcbkAppObject> v) = 0;
    virtual int32_t IAttribute_CDBPosition() = 0;
    virtual bool IAttribute_ToolOnly() = 0;
    virtual bool IAttribute_IsDeviceDependent() = 0;
    virtual bool IAttribute_IsUnitDependent() = 0;
    virtual std::string IAttribute_DeviceKey() = 0;
    virtual bool IAttribute_IsKeepFloatStandard() = 0;
    virtual int32_t IAttribute_DividedBy() = 0;
    virtual bool IAttribute_IsType() = 0;
    virtual std::string IAttribute_Min() = 0;
    virtual std::string IAttribute_Max() = 0;
    virtual std::string IAttribute_ExtendedKey() = 0;
    virtual bool IAttribute_IsMacroConnected() = 0;
};

// The rules by which an attribute takes a value: the same for the value editors, the command
// and a host's own grid, so that no way in lets through what another refuses.
struct IAttributeRules : virtual IObject {
    // Empty when the attribute takes Text, and then Value holds the text to write (a label
    // replaced by its code); otherwise why not, in words, and Value is left alone.
    virtual std::string IAttributeRules_Check(const std::string& Text, std::string& Value) = 0;
    // Each entry that a list-valued attribute offers (an enumeration, a type or unit
    // selector, a device list) as its code and label, in order; empty for any other.
    virtual std::vector<std::pair<std::string, std::string>> IAttributeRules_Choices() = 0;
};

struct IAttributes : virtual IObject {
    virtual int32_t IAttributes_Count() = 0;
    // By key without regard to case, else by LeadingNumber of the key as a 1-based position;
    // nullptr when both fail. Never throws.
    virtual std::shared_ptr<IAttribute> IAttributes_Item(const std::string& Key) = 0;
    virtual std::vector<std::shared_ptr<IAttribute>> IAttributes_NewEnum() = 0;
    virtual std::string IAttributes_GlobalKey() = 0;
    virtual std::string IAttributes_ExtendedKey() = 0;
};

}  // namespace zerbin
