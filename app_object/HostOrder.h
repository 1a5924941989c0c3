// The order in which a host brings a block to life: dictionary, IAppObject_Init, owner device
// document, short float, IAppObject_Create, global key, extended key, user name. The members
// read the documents while they are created and the keys are handed on to them, so another
// order gives another block. Every host of this project creates its blocks through NewBlock.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include <pugixml.hpp>

#include "app_object/CDBAppObject.h"

namespace zerbin {

// What a host gives a new block. A document left null and a key left empty are not written.
struct HostSetup {
    std::shared_ptr<const pugi::xml_document> dictionary;
    std::shared_ptr<const pugi::xml_document> ownerDevice;
    bool manageShortFloat = false;
    std::optional<std::string> globalKey;
    std::optional<std::string> extendedKey;
    std::optional<std::string> userName;
};

// A created block of the type. The caller ends it with IAppObject_Destroy.
std::shared_ptr<CDBAppObject> NewBlock(const std::string& type, const HostSetup& setup);

}  // namespace zerbin
