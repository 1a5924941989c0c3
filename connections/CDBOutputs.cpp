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

void CDBOutputs::ShowOutput(std::size_t index) {
    constexpr std::size_t kMarks = 64;
    if (IsTheTypes(index) && index < kMarks) {
        if (!AsTheyStand()[index]->IOutput_IsDisplayable()) {
            shown_ |= uint64_t{1} << index;
        }
        return;
    }
    At(index)->IOutput_IsDisplayable(true);
}

void CDBOutputs::MemberReached(std::size_t index) const {
    if (index < 64 && (shown_ >> index & 1) != 0) {
        shown_ &= ~(uint64_t{1} << index);
        AsTheyStand()[index]->IOutput_IsDisplayable(true);
    }
}

}  // namespace zerbin
