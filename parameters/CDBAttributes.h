// The ordered, keyed collection of the attributes of a block.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <pugixml.hpp>

#include "base/KeyedCollection.h"
#include "base/SharedMembers.h"
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
    // Every member, each the block's own.
    const std::vector<std::shared_ptr<CDBAttribute>>& Members() const;
    // Calls act on every member: at once on those the block has made its own, on the others
    // when the block first reaches them, so that giving all members something makes none.
    void GiveToAll(std::function<void(CDBAttribute&)> act);
    // IAttributes_Item without the interface: by key, else by 1-based position.
    std::shared_ptr<CDBAttribute> Item(std::string_view key) const;
    // Every member copied (CDBAttribute::CopyFor) under owner; no key.
    std::shared_ptr<CDBAttributes> CopyFor(const std::shared_ptr<IAppObject>& owner,
                                           bool shareRecords) const;

    // The members of a block made from a compiled type, of which this is the collection: each
    // stays the type's until the block first reaches it through any of the accessors above,
    // and is copied under owner only then. A block whose members are only compared with the
    // type's (its image) and restored to what the type has (most values of a project) copies
    // none. This collection must never change afterwards.
    std::shared_ptr<CDBAttributes> SharedFor(const std::shared_ptr<IAppObject>& owner) const;

    // For the image and the restore of values, which only read: the members as they stand,
    // the type's where the block has not yet reached them. Never to be changed or handed out.
    const std::vector<std::shared_ptr<CDBAttribute>>& AsTheyStand() const;
    // The index of the member Item(key) gives, without reaching it; -1 when none. likely is
    // where the member probably stands (a saved block lists its values in the type's order),
    // tried first.
    std::ptrdiff_t IndexOf(std::string_view key, std::size_t likely = 0) const;
    // Whether the member at index is still the type's.
    bool IsTheTypes(std::size_t index) const;
    // The member at index, the block's own (copied first if it was the type's).
    std::shared_ptr<CDBAttribute> At(std::size_t index) const;

    // Restores a value a project saved (none: an element without text) for a member still the
    // type's by keeping the value beside it, as if the member had been copied and restored:
    // a project's values need no copy of their members. False, with nothing done, where the
    // member is the block's own or its restore could tell anyone: the caller restores it.
    bool RestoreUnreached(std::size_t index, std::optional<std::string_view> text);
    // The value a member still the type's has in this block, where it is not the type's one;
    // nullptr otherwise.
    const std::string* UnreachedValue(std::size_t index) const;
    // Whether every member is still the type's, with the type's values.
    bool AsTheTypeHasThem() const {
        return shared_.NoneReached(items_.Items().size()) && unreached_.empty();
    }

private:
    void ReachAll() const;
    // Makes the member at index the block's own, with the value kept for it.
    void Reach(std::size_t index) const;

    std::string globalKey_;
    // Mutable: reaching a member of the type's replaces it with the block's copy, a change that
    // no reader can tell from a collection that held the copy from the start.
    mutable KeyedCollection<CDBAttribute> items_;
    std::string extendedKey_;
    mutable SharedMembers<CDBAttribute, IAppObject> shared_;
    // Values restored for members still the type's (RestoreUnreached), by index: few per block.
    mutable std::vector<std::pair<std::size_t, std::string>> unreached_;
};

}  // namespace zerbin
