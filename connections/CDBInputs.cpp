#include "connections/CDBInputs.h"

#include <utility>

namespace zerbin {

void CDBInputs::IInputs_CallBack(std::shared_ptr<IcbkAppObject> v) {
    callBack_ = std::move(v);
}

int32_t CDBInputs::IInputs_Count() {
    return Count();
}

std::shared_ptr<IInput> CDBInputs::IInputs_Item(const std::string& Key) {
    return Item(Key);
}

std::vector<std::shared_ptr<IInput>> CDBInputs::IInputs_NewEnum() {
    const auto& members = Members();
    return {members.begin(), members.end()};
}

std::string CDBInputs::IInputs_GlobalKey() {
    return GlobalKey();
}

std::string CDBInputs::IInputs_ExtendedKey() {
    return ExtendedKey();
}

void CDBInputs::Destroy() {
    ForEachOwn([](CDBInput& input) { input.SetParent(nullptr); });
    ForgetTheTypes();
}

}  // namespace zerbin
