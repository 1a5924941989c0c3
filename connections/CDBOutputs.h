// The ordered, keyed collection of the output references of a block.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include "base/KeyedCollection.h"
#include "base/SharedMembers.h"
#include "connections/CDBOutput.h"
#include "interfaces/IOutput.h"

namespace zerbin {

class CDBOutputs : public IOutputs {
public:
    int32_t IOutputs_Count() override;
    std::shared_ptr<IOutput> IOutputs_Item(const std::string& Key) override;
    std::vector<std::shared_ptr<IOutput>> IOutputs_NewEnum() override;
    std::string IOutputs_GlobalKey() override;
    void IOutputs_CallBack(std::shared_ptr<IcbkAppObject> v) override;
    std::string IOutputs_ExtendedKey() override;

    // Internal. Throws on a duplicate name (any letter case) or a bad definition.
    std::shared_ptr<CDBOutput> AddFromDefinition(const std::string& name, pugi::xml_node node,
                                                 std::shared_ptr<IAppObject> parent);
    int32_t MaxNameLength() const;
    void PropagateGlobalKey(const std::string& key);
    void PropagateExtendedKey(const std::string& key);
    // Every member, each the block's own.
    const std::vector<std::shared_ptr<CDBOutput>>& Members() const;
    // Calls act on every member: at once on those the block has made its own, on the others
    // when the block first reaches them, so that giving all members something makes none.
    void GiveToAll(std::function<void(CDBOutput&)> act);
    // Every member copied (CDBOutput::CopyFor) under parent; no key, no listener.
    std::shared_ptr<CDBOutputs> CopyFor(const std::shared_ptr<IAppObject>& parent,
                                        bool shareRecords) const;
    // The members of a block made from a compiled type, of which this is the collection: each
    // stays the type's until the block first reaches it, and is copied under parent only then
    // (see SharedMembers). This collection must never change afterwards.
    std::shared_ptr<CDBOutputs> SharedFor(const std::shared_ptr<IAppObject>& parent) const;
    // Whether every member is still the type's and no one listens: what the type's own
    // members would do, the block does.
    bool AsTheTypeHasThem() const {
        return shared_.NoneReached(items_.Items().size()) && !callBack_;
    }

private:
    std::string globalKey_;
    // Mutable: reaching a member of the type's replaces it with the block's copy, a change that
    // no reader can tell from a collection that held the copy from the start.
    mutable KeyedCollection<CDBOutput> items_;
    mutable SharedMembers<CDBOutput, IAppObject> shared_;
    int32_t maxNameLength_ = 0;
    std::shared_ptr<IcbkAppObject> callBack_;
    std::string extendedKey_;
};

}  // namespace zerbin
