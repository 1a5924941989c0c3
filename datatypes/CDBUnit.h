// One choice of a unit selector: the unit the user sees and the types it stands for.
#pragma once

#include <string>

namespace zerbin {

class CDBUnit {
public:
    std::string UnitName;
    // The type for attributes that are not differential; also the selector's value.
    std::string UnitTypeID;
    // The type for attributes marked differential; may be empty.
    std::string DifferentialTypeID;
};

}  // namespace zerbin
