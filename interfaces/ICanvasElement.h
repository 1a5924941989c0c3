// Facets shared by the members of a block: visibility on the canvas, and the connection
// facet through which the host manages the connections of inputs and outputs.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "interfaces/IObject.h"
#include "interfaces/ISNVType.h"

namespace zerbin {

struct ICanvasElement : virtual IObject {
    virtual bool ICanvasElement_Visible() = 0;
    virtual void ICanvasElement_Visible(bool v) = 0;
};

struct ISubItemConnable : virtual IObject {
    virtual void ISubItemConnable_IsConnected(bool v) = 0;
    virtual void ISubItemConnable_HasPriority(bool v) = 0;
    virtual void ISubItemConnable_IncrementalConnIndex(int32_t v) = 0;
    virtual void ISubItemConnable_ConnectedType(std::shared_ptr<ISNVType> v) = 0;
    virtual int32_t ISubItemConnable_ItemType() = 0;
    virtual std::string ISubItemConnable_GlobalKey() = 0;
    virtual std::string ISubItemConnable_Name() = 0;
    virtual std::shared_ptr<ISNVType> ISubItemConnable_SNVTType() = 0;
    virtual bool ISubItemConnable_IsSNVTCompatible(const std::string& sId) = 0;
};

}  // namespace zerbin
