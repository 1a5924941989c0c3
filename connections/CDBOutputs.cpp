#include "connections/CDBOutputs.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "base/MMain.h"

namespace zerbin {

void CDBOutputs::IOutputs_CallBack(std::shared_ptr<IcbkAppObject> v) {
    callBack_ = std::move(v);
}

int32_t CDBOutputs::IOutputs_Count() {
    return items_.Count();
}

std::shared_ptr<IOutput> CDBOutputs::IOutputs_Item(const std::string& Key) {
    return shared_.Item(items_, Key);
}

std::vector<std::shared_ptr<IOutput>> CDBOutputs::IOutputs_NewEnum() {
    const auto& members = Members();
    return {members.begin(), members.end()};
}

std::string CDBOutputs::IOutputs_GlobalKey() {
    return globalKey_;
}

std::string CDBOutputs::IOutputs_ExtendedKey() {
    return extendedKey_;
}

std::shared_ptr<CDBOutput> CDBOutputs::AddFromDefinition(const std::string& name,
                                                         pugi::xml_node node,
                                                         std::shared_ptr<IAppObject> parent) {
    auto output = std::make_shared<CDBOutput>();
    output->SetParent(std::move(parent));
    output->SetName(name);
    output->LoadDefinition(node);
    items_.Add(name, output);
    output->SetIndex(items_.Count() - 1);
    maxNameLength_ = std::max(maxNameLength_, CharCount(name));
    return output;
}

std::shared_ptr<CDBOutputs> CDBOutputs::CopyFor(const std::shared_ptr<IAppObject>& parent,
                                                bool shareRecords) const {
    shared_.ReachAll(items_);
    auto copy = std::make_shared<CDBOutputs>();
    copy->maxNameLength_ = maxNameLength_;
    copy->items_ = items_.Copied([&](const std::shared_ptr<CDBOutput>& output) {
        return output->CopyFor(parent, shareRecords);
    });
    return copy;
}

std::shared_ptr<CDBOutputs> CDBOutputs::SharedFor(const std::shared_ptr<IAppObject>& parent) const {
    auto shared = std::make_shared<CDBOutputs>();
    shared->maxNameLength_ = maxNameLength_;
    shared->items_ = items_;
    shared->shared_.ShareAll(items_.Items().size(), parent);
    return shared;
}

int32_t CDBOutputs::MaxNameLength() const {
    return maxNameLength_;
}

void CDBOutputs::PropagateGlobalKey(const std::string& key) {
    globalKey_ = key;
    const MemberKey under = MemberKey::Under(std::make_shared<const std::string>(key));
    shared_.GiveGlobalKey(items_, under);
}

void CDBOutputs::PropagateExtendedKey(const std::string& key) {
    extendedKey_ = key;
    const MemberKey under = MemberKey::Under(std::make_shared<const std::string>(key));
    shared_.GiveExtendedKey(items_, under);
}

const std::vector<std::shared_ptr<CDBOutput>>& CDBOutputs::Members() const {
    shared_.ReachAll(items_);
    return items_.Items();
}

void CDBOutputs::GiveToAll(std::function<void(CDBOutput&)> act) {
    shared_.GiveToAll(items_, std::move(act));
}

}  // namespace zerbin
