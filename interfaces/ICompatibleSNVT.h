// Sets of type ids that an input accepts, and the single id that an output offers.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "interfaces/IObject.h"

namespace zerbin {

struct ICompatibleSNVT : virtual IObject {
    virtual std::string ICompatibleSNVT_ID() = 0;
};

struct ICompatibleSNVTs : virtual IObject {
    virtual int32_t ICompatibleSNVTs_Count() = 0;
    // By 1-based position; nullptr outside 1 to count.
    virtual std::shared_ptr<ICompatibleSNVT> ICompatibleSNVTs_Item(int32_t Key) = 0;
    virtual std::vector<std::shared_ptr<ICompatibleSNVT>> ICompatibleSNVTs_NewEnum() = 0;
    // Adds the ids of a comma-separated list; ids already present are passed over.
    virtual void ICompatibleSNVTs_Add(const std::string& list) = 0;
    // Throws when the id is not in the set.
    virtual void ICompatibleSNVTs_Remove(const std::string& sId) = 0;
    virtual std::string ICompatibleSNVTs_ToString() = 0;
    // Ids compared without regard to case.
    virtual bool ICompatibleSNVTs_Exists(const std::string& strSnvtID) = 0;
    // The intersection, in the order of the given set; throws when none is given.
    virtual std::shared_ptr<ICompatibleSNVTs> ICompatibleSNVTs_Merge(
        std::shared_ptr<ICompatibleSNVTs> oCompatibleSNVTs) = 0;
};

struct IClonable : virtual IObject {
    virtual std::shared_ptr<IObject> IClonable_Clone() = 0;
};

}  // namespace zerbin
