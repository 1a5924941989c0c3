// The set of type ids that an input accepts, in the order they were added.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/KeyedCollection.h"
#include "datatypes/CDBCompatibleSNVT.h"
#include "interfaces/ICompatibleSNVT.h"

namespace zerbin {

class CDBCompatibleSNVTs : public ICompatibleSNVTs, public IClonable {
public:
    int32_t ICompatibleSNVTs_Count() override;
    std::shared_ptr<ICompatibleSNVT> ICompatibleSNVTs_Item(int32_t Key) override;
    std::vector<std::shared_ptr<ICompatibleSNVT>> ICompatibleSNVTs_NewEnum() override;
    void ICompatibleSNVTs_Add(const std::string& list) override;
    void ICompatibleSNVTs_Remove(const std::string& sId) override;
    // The ids joined by ",".
    std::string ICompatibleSNVTs_ToString() override;
    bool ICompatibleSNVTs_Exists(const std::string& strSnvtID) override;
    std::shared_ptr<ICompatibleSNVTs> ICompatibleSNVTs_Merge(
        std::shared_ptr<ICompatibleSNVTs> oCompatibleSNVTs) override;

    std::shared_ptr<IObject> IClonable_Clone() override;

    // Internal. One id, or a comma-separated list whose first empty token ends it; ids that
    // are present already are passed over. Serves pending events before each token of a list.
    void AddList(const std::string& list);
    // Internal. The same ids in a set of its own; the entries, which never change, are shared.
    std::shared_ptr<CDBCompatibleSNVTs> Copy() const;
    // Throws when the id is not in the set.
    void RemoveEntry(const std::string& id);

private:
    KeyedCollection<CDBCompatibleSNVT> items_;
};

}  // namespace zerbin
