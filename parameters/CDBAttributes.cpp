#include "parameters/CDBAttributes.h"

#include "base/MMain.h"

namespace zerbin {

CDBAttributes::~CDBAttributes() {
    for (const auto& attribute : items_.Items()) {
        attribute->Release();
    }
}

int32_t CDBAttributes::IAttributes_Count() {
    return items_.Count();
}

std::shared_ptr<IAttribute> CDBAttributes::IAttributes_Item(const std::string& Key) {
    return items_.Item(Key);
}

std::shared_ptr<CDBAttribute> CDBAttributes::Item(std::string_view key) const {
    return items_.Item(key);
}

std::vector<std::shared_ptr<IAttribute>> CDBAttributes::IAttributes_NewEnum() {
    return {items_.Items().begin(), items_.Items().end()};
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
    for (const auto& attribute : items_.Items()) {
        attribute->SetGlobalKey(under);
    }
}

void CDBAttributes::PropagateExtendedKey(const std::string& key) {
    extendedKey_ = key;
    const MemberKey under = MemberKey::Under(std::make_shared<const std::string>(key));
    for (const auto& attribute : items_.Items()) {
        attribute->SetExtendedKey(under);
    }
}

std::shared_ptr<CDBAttributes> CDBAttributes::CopyFor(const std::shared_ptr<IAppObject>& owner,
                                                      bool shareRecords) const {
    auto copy = std::make_shared<CDBAttributes>();
    copy->items_ = items_.Copied([&](const std::shared_ptr<CDBAttribute>& attribute) {
        return attribute->CopyFor(owner, shareRecords);
    });
    return copy;
}

const std::vector<std::shared_ptr<CDBAttribute>>& CDBAttributes::Members() const {
    return items_.Items();
}

}  // namespace zerbin
