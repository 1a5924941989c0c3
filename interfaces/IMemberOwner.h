// What a member (attribute, input, output) asks of the block that owns it, beyond IAppObject:
// the definition document it was built from and the block's unit converter. Members reach
// their block only through this facet, so that they don't depend on the block's class.
#pragma once

#include <memory>

#include <pugixml.hpp>

#include "interfaces/IUnitsProvider.h"

namespace zerbin {

struct IMemberOwner : IUnitsProvider {
    // The block's definition document; nullptr before the type is known.
    virtual std::shared_ptr<const pugi::xml_document> ObjectXML() = 0;
};

}  // namespace zerbin
