// The ordered, keyed collection of the input references of a block.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include "base/KeyedCollection.h"
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
    const std::vector<std::shared_ptr<CDBInput>>& Members() const;
    // Every member copied (CDBInput::CopyFor) under parent; no key, no listener.
    std::shared_ptr<CDBInputs> CopyFor(const std::shared_ptr<IAppObject>& parent,
                                       bool shareCompatibles) const;

private:
    std::string globalKey_;
    int32_t maxNameLength_ = 0;
    std::shared_ptr<IcbkAppObject> callBack_;
    KeyedCollection<CDBInput> items_;
    std::string extendedKey_;
};

}  // namespace zerbin
