// The ordered, keyed collection of the input references of a block.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include "base/KeyedCollection.h"
#include "base/SharedMembers.h"
#include "connections/CDBInput.h"
#include "interfaces/IInput.h"

namespace zerbin {

class CDBInputs : public IInputs {
public:
    void IInputs_CallBack(std::shared_ptr<IcbkAppObject> v) override;
    int32_t IInputs_Count() override;
    std::shared_ptr<IInput> IInputs_Item(const std::string& Key) override;
    std::vector<std::shared_ptr<IInput>> IInputs_NewEnum() override;
    std::string IInputs_GlobalKey() override;
    std::string IInputs_ExtendedKey() override;

    // Internal. Throws on a duplicate name (any letter case) or a bad definition; the earlier
    // members stay.
    std::shared_ptr<CDBInput> AddFromDefinition(const std::string& name, pugi::xml_node node,
                                                std::shared_ptr<IAppObject> parent);
    int32_t MaxNameLength() const;
    void PropagateGlobalKey(const std::string& key);
    void PropagateExtendedKey(const std::string& key);
    // Cuts every member's reference back to the block; the members stay.
    void Destroy();
    // Every member, each the block's own.
    const std::vector<std::shared_ptr<CDBInput>>& Members() const;
    // Calls act on every member: at once on those the block has made its own, on the others
    // when the block first reaches them, so that giving all members something makes none.
    void GiveToAll(std::function<void(CDBInput&)> act);
    // Every member copied (CDBInput::CopyFor) under parent; no key, no listener.
    std::shared_ptr<CDBInputs> CopyFor(const std::shared_ptr<IAppObject>& parent,
                                       bool shareCompatibles) const;
    // The members of a block made from a compiled type, of which this is the collection: each
    // stays the type's until the block first reaches it, and is copied under parent only then
    // (see SharedMembers). This collection must never change afterwards.
    std::shared_ptr<CDBInputs> SharedFor(const std::shared_ptr<IAppObject>& parent) const;
    // Whether every member is still the type's and no one listens: what the type's own
    // members would do, the block does.
    bool AsTheTypeHasThem() const {
        return shared_.NoneReached(items_.Items().size()) && !callBack_;
    }
    // For the image, which only compares: the members as they stand, the type's where the
    // block has not reached them. Never to be changed or handed out.
    const std::vector<std::shared_ptr<CDBInput>>& AsTheyStand() const;

private:
    std::string globalKey_;
    int32_t maxNameLength_ = 0;
    std::shared_ptr<IcbkAppObject> callBack_;
    // Mutable: reaching a member of the type's replaces it with the block's copy, a change that
    // no reader can tell from a collection that held the copy from the start.
    mutable KeyedCollection<CDBInput> items_;
    mutable SharedMembers<CDBInput, IAppObject> shared_;
    std::string extendedKey_;
};

}  // namespace zerbin
