#include "parameters/CDBAttributes.h"

#include <algorithm>
#include <utility>

#include "base/MMain.h"

namespace zerbin {

CDBAttributes::~CDBAttributes() {
    shared_.ForEachOwn(items_, [](CDBAttribute& attribute) { attribute.Release(); });
}

int32_t CDBAttributes::IAttributes_Count() {
    return items_.Count();
}

std::shared_ptr<IAttribute> CDBAttributes::IAttributes_Item(const std::string& Key) {
    return Item(Key);
}

std::shared_ptr<CDBAttribute> CDBAttributes::Item(std::string_view key) const {
    const std::ptrdiff_t at = items_.IndexOf(key);
    if (at < 0) {
        return nullptr;
    }
    return At(static_cast<std::size_t>(at));
}

std::vector<std::shared_ptr<IAttribute>> CDBAttributes::IAttributes_NewEnum() {
    const auto& members = Members();
    return {members.begin(), members.end()};
}

std::string CDBAttributes::IAttributes_GlobalKey() {
    return globalKey_;
}

std::string CDBAttributes::IAttributes_ExtendedKey() {
    return extendedKey_;
}

std::shared_ptr<CDBAttribute> CDBAttributes::AddFromDefinition(
    const std::string& name, pugi::xml_node node, std::shared_ptr<IAppObject> owner,
    std::shared_ptr<AttributeInterceptor> interceptor) {
    auto attribute = std::make_shared<CDBAttribute>();
    attribute->IInterceptableAttribute_SetInterceptor(std::move(interceptor));
    // Owner and name come first: the warnings of the load name both, and the load reaches
    // the block's documents through the owner.
    try {
        attribute->SetParent(std::move(owner));
        attribute->SetName(name);
        attribute->LoadDefinition(node);
        items_.Add(name, attribute);
    } catch (...) {
        // A load that ran out of memory, or a refused name: the attribute is in no collection,
        // so nothing else will ever release it from its owner and fields.
        attribute->Release();
        throw;
    }
    attribute->CreateEditor();
    return attribute;
}

void CDBAttributes::PropagateGlobalKey(const std::string& key) {
    globalKey_ = key;
    const MemberKey under = MemberKey::Under(std::make_shared<const std::string>(key));
    shared_.GiveGlobalKey(items_, under);
}

void CDBAttributes::PropagateExtendedKey(const std::string& key) {
    extendedKey_ = key;
    const MemberKey under = MemberKey::Under(std::make_shared<const std::string>(key));
    shared_.GiveExtendedKey(items_, under);
}

std::shared_ptr<CDBAttributes> CDBAttributes::CopyFor(const std::shared_ptr<IAppObject>& owner,
                                                      bool shareRecords) const {
    ReachAll();
    auto copy = std::make_shared<CDBAttributes>();
    copy->items_ = items_.Copied([&](const std::shared_ptr<CDBAttribute>& attribute) {
        return attribute->CopyFor(owner, shareRecords);
    });
    return copy;
}

const std::vector<std::shared_ptr<CDBAttribute>>& CDBAttributes::Members() const {
    ReachAll();
    return items_.Items();
}

std::shared_ptr<CDBAttributes> CDBAttributes::SharedFor(
    const std::shared_ptr<IAppObject>& owner) const {
    auto shared = std::make_shared<CDBAttributes>();
    shared->items_ = items_;
    shared->shared_.ShareAll(items_.Items().size(), owner);
    return shared;
}

const std::vector<std::shared_ptr<CDBAttribute>>& CDBAttributes::AsTheyStand() const {
    return items_.Items();
}

std::ptrdiff_t CDBAttributes::IndexOf(std::string_view key, std::size_t likely) const {
    // Names are unique without regard to case: a member whose name matches is the one the key
    // finds.
    const auto& items = items_.Items();
    if (likely < items.size() && EqualsNoCase(items[likely]->Name(), key)) {
        return static_cast<std::ptrdiff_t>(likely);
    }
    return items_.IndexOf(key);
}

bool CDBAttributes::IsTheTypes(std::size_t index) const {
    return shared_.IsTheTypes(index);
}

std::shared_ptr<CDBAttribute> CDBAttributes::At(std::size_t index) const {
    Reach(index);
    return items_.Items()[index];
}

void CDBAttributes::Reach(std::size_t index) const {
    if (!shared_.IsTheTypes(index)) {
        return;
    }
    shared_.Reach(items_, index);
    const auto kept = std::find_if(unreached_.begin(), unreached_.end(),
                                   [&](const auto& entry) { return entry.first == index; });
    if (kept != unreached_.end()) {
        items_.Items()[index]->TakeRestoredValue(std::move(kept->second));
        unreached_.erase(kept);
    }
}

void CDBAttributes::ReachAll() const {
    for (std::size_t i = 0; i < items_.Items().size(); ++i) {
        Reach(i);
    }
}

bool CDBAttributes::RestoreUnreached(std::size_t index, std::optional<std::string_view> text) {
    if (!shared_.IsTheTypes(index) || shared_.HasLaterActs()) {
        return false;
    }
    const CDBAttribute& prototype = *items_.Items()[index];
    std::optional<std::string> value = prototype.PlainRestoredValue(text);
    if (!value) {
        return false;
    }
    const auto kept = std::find_if(unreached_.begin(), unreached_.end(),
                                   [&](const auto& entry) { return entry.first == index; });
    if (*value == prototype.StoredValue()) {
        if (kept != unreached_.end()) {
            unreached_.erase(kept);
        }
    } else if (kept != unreached_.end()) {
        kept->second = std::move(*value);
    } else {
        unreached_.emplace_back(index, std::move(*value));
    }
    return true;
}

const std::string* CDBAttributes::UnreachedValue(std::size_t index) const {
    for (const auto& entry : unreached_) {
        if (entry.first == index) {
            return &entry.second;
        }
    }
    return nullptr;
}

void CDBAttributes::GiveToAll(std::function<void(CDBAttribute&)> act) {
    shared_.GiveToAll(items_, std::move(act));
}

}  // namespace zerbin
