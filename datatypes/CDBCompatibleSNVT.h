// One type id of a compatible set, or the one id an output offers.
#pragma once

#include <string>

#include "interfaces/ICompatibleSNVT.h"

namespace zerbin {

class CDBCompatibleSNVT : public ICompatibleSNVT {
public:
    std::string ICompatibleSNVT_ID() override;
    // Internal.
    void SetID(const std::string& id);

private:
    std::string id_;
};

}  // namespace zerbin
