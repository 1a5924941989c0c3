#include "datatypes/CDBUnits.h"

namespace zerbin {

const std::vector<std::shared_ptr<CDBUnit>>& CDBUnits::NewEnum() const {
    return items_.Items();
}

std::shared_ptr<CDBUnit> CDBUnits::Item(const std::string& Key) const {
    return items_.Item(Key);
}

int32_t CDBUnits::Count() const {
    return items_.Count();
}

std::shared_ptr<CDBUnit> CDBUnits::AddUnit(const std::string& unitTypeId, const std::string& name,
                                           const std::string& differentialTypeId) {
    auto unit = std::make_shared<CDBUnit>();
    items_.Add(name, unit);
    unit->UnitTypeID = unitTypeId;
    unit->UnitName = name;
    unit->DifferentialTypeID = differentialTypeId;
    return unit;
}

}  // namespace zerbin
