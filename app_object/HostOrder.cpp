#include "app_object/HostOrder.h"

namespace zerbin {

namespace {

void Configure(CDBAppObject& block, const std::string& type, const HostSetup& setup) {
    if (setup.dictionary) {
        block.IAppObject_XmlSNVTDoc(setup.dictionary);
    }
    int32_t errorCode = 0;
    block.IAppObject_Init(type, errorCode);
    if (setup.ownerDevice) {
        block.IAppObject_OwnerDeviceXML(setup.ownerDevice);
    }
    block.IAppObject_ManageShortFloat(setup.manageShortFloat);
    block.IAppObject_Create();
    if (setup.globalKey) {
        block.IAppObject_GlobalKey(*setup.globalKey);
    }
    if (setup.extendedKey) {
        block.IAppObject_ExtendedKey(*setup.extendedKey);
    }
    if (setup.userName) {
        block.IAppObject_UserName(*setup.userName);
    }
}

}  // namespace

std::shared_ptr<CDBAppObject> NewBlock(const std::string& type, const HostSetup& setup) {
    auto block = std::make_shared<CDBAppObject>();
    try {
        Configure(*block, type, setup);
    } catch (...) {
        // The members hold their owner: without Destroy a block that failed half-way would
        // never be freed, and the caller has nothing to call it on.
        block->IAppObject_Destroy();
        throw;
    }
    return block;
}

}  // namespace zerbin
