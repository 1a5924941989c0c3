// The ordered, keyed collection of the attributes of a block.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <pugixml.hpp>

#include "base/MemberCollection.h"
#include "interfaces/IAttribute.h"
#include "interfaces/IHostServices.h"
#include "parameters/CDBAttribute.h"

namespace zerbin {

class CDBAttributes : public IAttributes,
                      public MemberCollection<CDBAttributes, CDBAttribute, IAppObject> {
public:
    CDBAttributes() = default;
    // Releases what would keep an attribute alive by itself (see CDBAttribute::Release).
    ~CDBAttributes() override;

    int32_t IAttributes_Count() override;
    std::shared_ptr<IAttribute> IAttributes_Item(const std::string& Key) override;
    std::vector<std::shared_ptr<IAttribute>> IAttributes_NewEnum() override;
    std::string IAttributes_GlobalKey() override;
    std::string IAttributes_ExtendedKey() override;

    // Internal. Throws when the name exists in any letter case; the attribute is not added.
    std::shared_ptr<CDBAttribute> AddFromDefinition(
        const std::string& name, pugi::xml_node node, std::shared_ptr<IAppObject> owner,
        std::shared_ptr<AttributeInterceptor> interceptor);
    // The index of the member Item(key) gives, without reaching it; -1 when none. likely is
    // where the member probably stands (a saved block lists its values in the type's order),
    // tried first.
    std::ptrdiff_t IndexOf(std::string_view key, std::size_t likely = 0) const;

    // Restores a value a project saved (none: an element without text) for a member still the
    // type's by keeping the value beside it, as if the member had been copied and restored:
    // a project's values need no copy of their members. False, with nothing done, where the
    // member is the block's own or its restore could tell anyone: the caller restores it.
    bool RestoreUnreached(std::size_t index, std::optional<std::string_view> text);
    // The value a member still the type's has in this block, where it is not the type's one;
    // nullptr otherwise.
    const std::string* UnreachedValue(std::size_t index) const;
    // Whether every member is still the type's, with the type's values.
    bool AsTheTypeHasThem() const { return NoneReached() && unreached_.empty(); }

    // A member of the type's just became the block's own: it takes the value kept for it.
    void MemberReached(std::size_t index) const;

private:
    // The value kept for the member at index, or the end of unreached_.
    std::vector<std::pair<std::size_t, std::string>>::iterator Kept(std::size_t index) const;

    // Values restored for members still the type's (RestoreUnreached), by index: few per block.
    mutable std::vector<std::pair<std::size_t, std::string>> unreached_;
};

}  // namespace zerbin
