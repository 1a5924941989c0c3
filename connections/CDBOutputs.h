// The ordered, keyed collection of the output references of a block.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include "base/KeyedCollection.h"
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
    const std::vector<std::shared_ptr<CDBOutput>>& Members() const;
    // Every member copied (CDBOutput::CopyFor) under parent; no key, no listener.
    std::shared_ptr<CDBOutputs> CopyFor(const std::shared_ptr<IAppObject>& parent,
                                        bool shareRecords) const;

private:
    std::string globalKey_;
    KeyedCollection<CDBOutput> items_;
    int32_t maxNameLength_ = 0;
    std::shared_ptr<IcbkAppObject> callBack_;
    std::string extendedKey_;
};

}  // namespace zerbin
