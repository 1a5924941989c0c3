#include "parameters/CDBAttributes.h"

#include <algorithm>
#include <utility>

#include "base/MMain.h"

namespace zerbin {

CDBAttributes::~CDBAttributes() {
    ForEachOwn([](CDBAttribute& attribute) { attribute.Release(); });
}

int32_t CDBAttributes::IAttributes_Count() {
    return Count();
}

std::shared_ptr<IAttribute> CDBAttributes::IAttributes_Item(const std::string& Key) {
    return Item(Key);
}

std::vector<std::shared_ptr<IAttribute>> CDBAttributes::IAttributes_NewEnum() {
    const auto& members = Members();
    return {members.begin(), members.end()};
}

std::string CDBAttributes::IAttributes_GlobalKey() {
    return GlobalKey();
}

std::string CDBAttributes::IAttributes_ExtendedKey() {
    return ExtendedKey();
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

std::ptrdiff_t CDBAttributes::IndexOf(std::string_view key, std::size_t likely) const {
    // Names are unique without regard to case: a member whose name matches is the one the key
    // finds.
    const auto& items = items_.Items();
    if (likely < items.size() && EqualsNoCase(items[likely]->Name(), key)) {
        return static_cast<std::ptrdiff_t>(likely);
    }
    return items_.IndexOf(key);
}

std::vector<std::pair<std::size_t, std::string>>::iterator CDBAttributes::Kept(
    std::size_t index) const {
    return std::find_if(unreached_.begin(), unreached_.end(),
                        [&](const auto& entry) { return entry.first == index; });
}

void CDBAttributes::MemberReached(std::size_t index) const {
    const auto kept = Kept(index);
    if (kept != unreached_.end()) {
        items_.Items()[index]->TakeRestoredValue(std::move(kept->second));
        unreached_.erase(kept);
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
    const auto kept = Kept(index);
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
    const auto kept = Kept(index);
    return kept == unreached_.end() ? nullptr : &kept->second;
}

}  // namespace zerbin
