// An input reference of a block, and the ordered keyed collection of them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "interfaces/ICompatibleSNVT.h"
#include "interfaces/IObject.h"
#include "interfaces/ISNVType.h"
#include "interfaces/IcbkAppObject.h"

namespace zerbin {

struct IAppObject;

struct IInput : virtual IObject {
    // Follows a type selector: replaces the compatible set when the input is type dependent.
    virtual void IInput_changeType(const std::string& NewType) = 0;
    virtual void IInput_CallBack(std::shared_ptr<IcbkAppObject> v) = 0;
    virtual int32_t IInput_NodeType() = 0;
    virtual bool IInput_IsConnected() = 0;
    virtual std::shared_ptr<ISNVType> IInput_ConnectedType() = 0;
    virtual bool IInput_Visible() = 0;
    virtual bool IInput_Mandatory() = 0;
    // The reference as hexadecimal digits: four, or six for an extended input.
    virtual std::string IInput_Value() = 0;
    virtual void IInput_Value(const std::string& v) = 0;
    virtual std::string IInput_Name() = 0;
    virtual std::string IInput_GlobalKey() = 0;
    virtual bool IInput_Extended() = 0;
    virtual int32_t IInput_Index() = 0;
    virtual int32_t IInput_CDBPosition() = 0;
    virtual std::shared_ptr<ICompatibleSNVTs> Iinput_SNVTCompatibles() = 0;
    virtual std::shared_ptr<IAppObject> Iinput_Parent() = 0;
    virtual std::string IInput_ExtendedKey() = 0;
    virtual bool IInput_IsMacroConnected() = 0;
};

struct IInputs : virtual IObject {
    virtual void IInputs_CallBack(std::shared_ptr<IcbkAppObject> v) = 0;
    virtual int32_t IInputs_Count() = 0;
    // By key, else by LeadingNumber of the key as a 1-based position; never throws.
    virtual std::shared_ptr<IInput> IInputs_Item(const std::string& Key) = 0;
    virtual std::vector<std::shared_ptr<IInput>> IInputs_NewEnum() = 0;
    virtual std::string IInputs_GlobalKey() = 0;
    virtual std::string IInputs_ExtendedKey() = 0;
};

}  // namespace zerbin
