// An output reference of a block, its display facet, and the ordered keyed collection.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "interfaces/ICompatibleSNVT.h"
#include "interfaces/IField.h"
#include "interfaces/IObject.h"
#include "interfaces/ISNVType.h"
#include "interfaces/IcbkAppObject.h"

namespace zerbin {

struct IAppObject;
struct Picture;

struct IOutput : virtual IObject {
    virtual bool IOutput_IsConnected() = 0;
    virtual void IOutput_CallBack(std::shared_ptr<IcbkAppObject> v) = 0;
    virtual void IOutput_changeType(const std::string& NewType) = 0;
    virtual int32_t IOutput_NodeType() = 0;
    virtual bool IOutput_Visible() = 0;
    virtual std::string IOutput_Name() = 0;
    virtual std::string IOutput_GlobalKey() = 0;
    virtual int32_t IOutput_Index() = 0;
    virtual std::shared_ptr<ICompatibleSNVT> IOutput_SNVTCompatible() = 0;
    virtual std::shared_ptr<ISNVType> IOutput_SNVTType() = 0;
    virtual std::shared_ptr<IAppObject> IOutput_Parent() = 0;
    virtual bool IOutput_DisplayWritable() = 0;
    virtual bool IOutput_IsTypeDependent() = 0;
    virtual std::string IOutput_ExtendedKey() = 0;
    virtual bool IOutput_IsMacroConnected() = 0;
    virtual bool IOutput_IsDisplayable() = 0;
    virtual void IOutput_IsDisplayable(bool v) = 0;
};

struct IDisplayItem : virtual IObject {
    virtual std::string IDisplayItem_DisplayText() = 0;
    virtual void IDisplayItem_DisplayText(const std::string& v) = 0;
    virtual std::string IDisplayItem_Key() = 0;
    virtual int32_t IDisplayItem_itemType() = 0;
    virtual std::shared_ptr<const Picture> IDisplayItem_Icon() = 0;
    virtual bool IDisplayItem_IsWritable() = 0;
    virtual bool IDisplayItem_IsTrendable() = 0;
    // The code by which another block's CDB refers to this output: four hex digits.
    virtual std::string IDisplayItem_Reference() = 0;
    virtual bool IDisplayItem_IsConnected() = 0;
    virtual bool IDisplayItem_IsDisplayable() = 0;
    virtual std::shared_ptr<ISNVType> IDisplayItem_SNVTType() = 0;
    virtual std::shared_ptr<IFields> IDisplayItem_Fields() = 0;
};

struct IOutputs : virtual IObject {
    virtual int32_t IOutputs_Count() = 0;
    virtual std::shared_ptr<IOutput> IOutputs_Item(const std::string& Key) = 0;
    virtual std::vector<std::shared_ptr<IOutput>> IOutputs_NewEnum() = 0;
    virtual std::string IOutputs_GlobalKey() = 0;
    virtual void IOutputs_CallBack(std::shared_ptr<IcbkAppObject> v) = 0;
    virtual std::string IOutputs_ExtendedKey() = 0;
};

}  // namespace zerbin
