// The ordered, keyed collection of the attributes of a block.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include "base/KeyedCollection.h"
#include "interfaces/IAttribute.h"
#include "interfaces/IHostServices.h"
#include "parameters/CDBAttribute.h"

namespace zerbin {

class CDBAttributes : public IAttributes {
public:
    CDBAttributes() = default;
    // Releases what would keep an attribute alive by itself (see CDBAttribute::Release).
    ~CDBAttributes() override;
    CDBAttributes(const CDBAttributes&) = delete;
    CDBAttributes& operator=(const CDBAttributes&) = delete;

    int32_t IAttributes_Count() override;
    std::shared_ptr<IAttribute> IAttributes_Item(const std::string& Key) override;
    std::vector<std::shared_ptr<IAttribute>> IAttributes_NewEnum() override;
    std::string IAttributes_GlobalKey() override;
    std::string IAttributes_ExtendedKey() override;

    // Internal. Throws when the name exists in any letter case; the attribute is not added.
    std::shared_ptr<CDBAttribute> AddFromDefinition(
        const std::string& name, pugi::xml_node node, std::shared_ptr<IAppObject> owner,
        std::shared_ptr<AttributeInterceptor> interceptor);
    void PropagateGlobalKey(const std::string& key);
    void PropagateExtendedKey(const std::string& key);
    const std::vector<std::shared_ptr<CDBAttribute>>& Members() const;
    // IAttributes_Item without the interface: by key, else by 1-based position.
    std::shared_ptr<CDBAttribute> Item(std::string_view key) const;
    // Every member copied (CDBAttribute::CopyFor) under owner; no key.
    std::shared_ptr<CDBAttributes> CopyFor(const std::shared_ptr<IAppObject>& owner,
                                           bool shareRecords) const;

private:
    std::string globalKey_;
    KeyedCollection<CDBAttribute> items_;
    std::string extendedKey_;
};

}  // namespace zerbin
