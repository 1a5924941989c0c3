#include "connections/CDBOutputs.h"

#include <utility>

namespace zerbin {

void CDBOutputs::IOutputs_CallBack(std::shared_ptr<IcbkAppObject> v) {
    callBack_ = std::move(v);
}

int32_t CDBOutputs::IOutputs_Count() {
    return Count();
}

std::shared_ptr<IOutput> CDBOutputs::IOutputs_Item(const std::string& Key) {
    return Item(Key);
}

std::vector<std::shared_ptr<IOutput>> CDBOutputs::IOutputs_NewEnum() {
    const auto& members = Members();
    return {members.begin(), members.end()};
}

std::string CDBOutputs::IOutputs_GlobalKey() {
    return GlobalKey();
}

std::string CDBOutputs::IOutputs_ExtendedKey() {
    return ExtendedKey();
}

}  // namespace zerbin
