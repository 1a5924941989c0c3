// The ordered list of the units a unit selector offers, keyed by unit name.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/KeyedCollection.h"
#include "datatypes/CDBUnit.h"

namespace zerbin {

class CDBUnits {
public:
    const std::vector<std::shared_ptr<CDBUnit>>& NewEnum() const;
    // By name without regard to case, else by LeadingNumber of the key as a 1-based position;
    // nullptr when both fail.
    std::shared_ptr<CDBUnit> Item(const std::string& Key) const;
    int32_t Count() const;
    // Internal. Throws when a unit of that name exists; the new unit is then dropped.
    std::shared_ptr<CDBUnit> AddUnit(const std::string& unitTypeId, const std::string& name,
                                     const std::string& differentialTypeId);

private:
    KeyedCollection<CDBUnit> items_;
};

}  // namespace zerbin
