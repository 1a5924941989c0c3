// Whatever hands a field the unit converter of its block: the field's attribute. Kept as a
// facet so that the data types don't depend on the attribute class.
#pragma once

#include <memory>

#include "interfaces/IHostServices.h"
#include "interfaces/IObject.h"

namespace zerbin {

struct IUnitsProvider : virtual IObject {
    virtual std::shared_ptr<IUnitConverter> UnitsManager() = 0;
};

}  // namespace zerbin
