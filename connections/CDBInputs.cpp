#include "connections/CDBInputs.h"

#include <algorithm>
#include <utility>

#include "base/MMain.h"

namespace zerbin {

void CDBInputs::IInputs_CallBack(std::shared_ptr<IcbkAppObject> v) {
    callBack_ = std::move(v);
}

int32_t CDBInputs::IInputs_Count() {
    return items_.Count();
}

std::shared_ptr<IInput> CDBInputs::IInputs_Item(const std::string& Key) {
    return items_.Item(Key);
}

std::vector<std::shared_ptr<IInput>> CDBInputs::IInputs_NewEnum() {
    return {items_.Items().begin(), items_.Items().end()};
}

std::string CDBInputs::IInputs_GlobalKey() {
    return globalKey_;
}

std::string CDBInputs::IInputs_ExtendedKey() {
    return extendedKey_;
}

std::shared_ptr<CDBInput> CDBInputs::AddFromDefinition(const std::string& name, pugi::xml_node node,
                                                       std::shared_ptr<IAppObject> parent) {
    auto input = std::make_shared<CDBInput>();
    input->SetParent(std::move(parent));
    input->SetName(name);
    input->LoadDefinition(node);
    items_.Add(name, input);
    input->SetIndex(items_.Count() - 1);
    maxNameLength_ = std::max(maxNameLength_, CharCount(name));
    return input;
}

std::shared_ptr<CDBInputs> CDBInputs::CopyFor(const std::shared_ptr<IAppObject>& parent,
                                              bool shareCompatibles) const {
    auto copy = std::make_shared<CDBInputs>();
    copy->maxNameLength_ = maxNameLength_;
    copy->items_ = items_.Copied([&](const std::shared_ptr<CDBInput>& input) {
        return input->CopyFor(parent, shareCompatibles);
    });
    return copy;
}

int32_t CDBInputs::MaxNameLength() const {
    return maxNameLength_;
}

void CDBInputs::PropagateGlobalKey(const std::string& key) {
    globalKey_ = key;
    const MemberKey under = MemberKey::Under(std::make_shared<const std::string>(key));
    for (const auto& input : items_.Items()) {
        input->SetGlobalKey(under);
    }
}

void CDBInputs::PropagateExtendedKey(const std::string& key) {
    extendedKey_ = key;
    const MemberKey under = MemberKey::Under(std::make_shared<const std::string>(key));
    for (const auto& input : items_.Items()) {
        input->SetExtendedKey(under);
    }
}

void CDBInputs::Destroy() {
    for (const auto& input : items_.Items()) {
        input->SetParent(nullptr);
    }
}

const std::vector<std::shared_ptr<CDBInput>>& CDBInputs::Members() const {
    return items_.Items();
}

}  // namespace zerbin
