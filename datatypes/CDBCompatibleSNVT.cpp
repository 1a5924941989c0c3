#include "datatypes/CDBCompatibleSNVT.h"

namespace zerbin {

std::string CDBCompatibleSNVT::ICompatibleSNVT_ID() {
    return id_;
}

void CDBCompatibleSNVT::SetID(const std::string& id) {
    id_ = id;
}

}  // namespace zerbin
