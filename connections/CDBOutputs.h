// The ordered, keyed collection of the output references of a block.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "connections/CDBOutput.h"
#include "connections/References.h"
#include "interfaces/IOutput.h"

namespace zerbin {

class CDBOutputs : public IOutputs, public References<CDBOutputs, CDBOutput> {
public:
    int32_t IOutputs_Count() override;
    std::shared_ptr<IOutput> IOutputs_Item(const std::string& Key) override;
    std::vector<std::shared_ptr<IOutput>> IOutputs_NewEnum() override;
    std::string IOutputs_GlobalKey() override;
    void IOutputs_CallBack(std::shared_ptr<IcbkAppObject> v) override;
    std::string IOutputs_ExtendedKey() override;
};

}  // namespace zerbin
