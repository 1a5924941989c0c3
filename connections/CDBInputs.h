// The ordered, keyed collection of the input references of a block.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "connections/CDBInput.h"
#include "connections/References.h"
#include "interfaces/IInput.h"

namespace zerbin {

class CDBInputs : public IInputs, public References<CDBInputs, CDBInput> {
public:
    void IInputs_CallBack(std::shared_ptr<IcbkAppObject> v) override;
    int32_t IInputs_Count() override;
    std::shared_ptr<IInput> IInputs_Item(const std::string& Key) override;
    std::vector<std::shared_ptr<IInput>> IInputs_NewEnum() override;
    std::string IInputs_GlobalKey() override;
    std::string IInputs_ExtendedKey() override;

    // Internal. Cuts every member's reference back to the block; the members stay.
    void Destroy();
};

}  // namespace zerbin
