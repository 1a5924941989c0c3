#include "connections/CDBInputs.h"

#include <algorithm>
#include <cstddef>
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
    return shared_.Item(items_, Key);
}

std::vector<std::shared_ptr<IInput>> CDBInputs::IInputs_NewEnum() {
    const auto& members = Members();
    return {members.begin(), members.end()};
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
    shared_.ReachAll(items_);
    auto copy = std::make_shared<CDBInputs>();
    copy->maxNameLength_ = maxNameLength_;
    copy->items_ = items_.Copied([&](const std::shared_ptr<CDBInput>& input) {
        return input->CopyFor(parent, shareCompatibles);
    });
    return copy;
}

std::shared_ptr<CDBInputs> CDBInputs::SharedFor(const std::shared_ptr<IAppObject>& parent) const {
    auto shared = std::make_shared<CDBInputs>();
    shared->maxNameLength_ = maxNameLength_;
    shared->items_ = items_;
    shared->shared_.ShareAll(items_.Items().size(), parent);
    return shared;
}

const std::vector<std::shared_ptr<CDBInput>>& CDBInputs::AsTheyStand() const {
    return items_.Items();
}

int32_t CDBInputs::MaxNameLength() const {
    return maxNameLength_;
}

void CDBInputs::PropagateGlobalKey(const std::string& key) {
    globalKey_ = key;
    const MemberKey under = MemberKey::Under(std::make_shared<const std::string>(key));
    shared_.GiveGlobalKey(items_, under);
}

void CDBInputs::PropagateExtendedKey(const std::string& key) {
    extendedKey_ = key;
    const MemberKey under = MemberKey::Under(std::make_shared<const std::string>(key));
    shared_.GiveExtendedKey(items_, under);
}

void CDBInputs::Destroy() {
    shared_.ForEachOwn(items_, [](CDBInput& input) { input.SetParent(nullptr); });
    shared_.Forget();
}

const std::vector<std::shared_ptr<CDBInput>>& CDBInputs::Members() const {
    shared_.ReachAll(items_);
    return items_.Items();
}

void CDBInputs::GiveToAll(std::function<void(CDBInput&)> act) {
    shared_.GiveToAll(items_, std::move(act));
}

}  // namespace zerbin
