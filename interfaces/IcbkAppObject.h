// The listener interface through which a block tells whoever listens that something changed.
// The host implements it, and so does the parameter list window. Members raise the operations
// synchronously, walking their own lists in order of registration.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "interfaces/IObject.h"

namespace zerbin {

struct IcbkAppObject : virtual IObject {
    virtual void IcbkAppObject_Created() = 0;
    virtual void IcbkAppObject_CDBChanged(int32_t ExtraCDBLen, int32_t ExtraDDBLen,
                                          int32_t ExtraSDBLen) = 0;
    virtual void IcbkAppObject_Destroied() = 0;
    // Raised by an attribute whose value changed, with the attribute's global key.
    virtual void IcbkAppObject_AttributeChanged(const std::string& GlobalKey) = 0;
    virtual void IcbkAppObject_AppObjectUserNameChanged(const std::string& GlobalKey) = 0;
    virtual void IcbkAppObject_NVNameChanged(const std::string& GlobalKey,
                                             const std::string& NewName) = 0;
    virtual void IcbkAppObject_CPNameChanged(const std::string& GlobalKey,
                                             const std::string& NewName) = 0;
    virtual void IcbkAppObject_NVTypeChanged(const std::string& GlobalKey) = 0;
    virtual void IcbkAppObject_CPTypeChanged(const std::string& GlobalKey) = 0;
    // Raised by a type-dependent input whose type changed, right after ConnectionToBeDeleted.
    virtual void IcbkAppObject_RefInTypeChanged(const std::string& GlobalKey) = 0;
    virtual void IcbkAppObject_RefInAdded(const std::string& GlobalKey) = 0;
    virtual void IcbkAppObject_RefInRemoved(const std::string& GlobalKey) = 0;
    virtual void IcbkAppObject_RefOutAdded(const std::string& GlobalKey) = 0;
    virtual void IcbkAppObject_RefOutRemoved(const std::string& GlobalKey) = 0;
    // Raised by a type-dependent output whose type changed, right after ConnectionToBeDeleted.
    virtual void IcbkAppObject_RefOutTypeChanged(const std::string& GlobalKey) = 0;
    virtual void IcbkAppObject_ConnectionDeleted() = 0;
    // The argument is the global key of the input or output whose connections are at stake.
    virtual void IcbkAppObject_ConnectionToBeDeleted(const std::string& ConnectionKey) = 0;
    virtual void IcbkAppObject_RefOutAddedBefore(const std::string& GlobalKey,
                                                 const std::string& BeforeKey) = 0;
    virtual void IcbkAppObject_RefreshObj(const std::string& GlobalKey) = 0;
    virtual void IcbkAppObject_NumObjectsChanged() = 0;
    virtual void IcbkAppObject_AvailableDimsChanged() = 0;
    virtual void IcbkAppObject_RemoveGatewayObject(const std::string& sRemovedKey) = 0;
    virtual void IcbkAppObject_LoadGatewayDevices() = 0;
    virtual std::shared_ptr<IObject> IcbkAppObject_Gateways() = 0;
    virtual std::shared_ptr<IObject> IcbkAppObject_Ioms() = 0;
    virtual void IcbkAppObject_RemoveIomInternalObject(
        std::shared_ptr<IObject> oIomInternalAppObject) = 0;
    virtual void IcbkAppObject_LoadIoms(std::shared_ptr<IObject> oXmlNode,
                                        std::shared_ptr<IObject> oDevice) = 0;
};

// A listener that does nothing: derive from it and override what you listen to.
struct NullAppObjectListener : IcbkAppObject {
    void IcbkAppObject_Created() override {}
    void IcbkAppObject_CDBChanged(int32_t, int32_t, int32_t) override {}
    void IcbkAppObject_Destroied() override {}
    void IcbkAppObject_AttributeChanged(const std::string&) override {}
    void IcbkAppObject_AppObjectUserNameChanged(const std::string&) override {}
    void IcbkAppObject_NVNameChanged(const std::string&, const std::string&) override {}
    void IcbkAppObject_CPNameChanged(const std::string&, const std::string&) override {}
    void IcbkAppObject_NVTypeChanged(const std::string&) override {}
    void IcbkAppObject_CPTypeChanged(const std::string&) override {}
    void IcbkAppObject_RefInTypeChanged(const std::string&) override {}
    void IcbkAppObject_RefInAdded(const std::string&) override {}
    void IcbkAppObject_RefInRemoved(const std::string&) override {}
    void IcbkAppObject_RefOutAdded(const std::string&) override {}
    void IcbkAppObject_RefOutRemoved(const std::string&) override {}
    void IcbkAppObject_RefOutTypeChanged(const std::string&) override {}
    void IcbkAppObject_ConnectionDeleted() override {}
    void IcbkAppObject_ConnectionToBeDeleted(const std::string&) override {}
    void IcbkAppObject_RefOutAddedBefore(const std::string&, const std::string&) override {}
    void IcbkAppObject_RefreshObj(const std::string&) override {}
    void IcbkAppObject_NumObjectsChanged() override {}
    void IcbkAppObject_AvailableDimsChanged() override {}
    void IcbkAppObject_RemoveGatewayObject(const std::string&) override {}
    void IcbkAppObject_LoadGatewayDevices() override {}
    std::shared_ptr<IObject> IcbkAppObject_Gateways() override { return nullptr; }
    std::shared_ptr<IObject> IcbkAppObject_Ioms() override { return nullptr; }
    void IcbkAppObject_RemoveIomInternalObject(std::shared_ptr<IObject>) override {}
    void IcbkAppObject_LoadIoms(std::shared_ptr<IObject>, std::shared_ptr<IObject>) override {}
};

}  // namespace zerbin
