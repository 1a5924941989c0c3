// The ordered, keyed collection of the output references of a block.
#pragma once

#include <cstddef>
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

    // Internal. Makes the output at index displayable, as IOutput_IsDisplayable(true) does,
    // without copying one still the type's: a project lists the outputs it shows.
    void ShowOutput(std::size_t index);
    // Whether every member is still the type's, as the type has it, and no one listens.
    bool AsTheTypeHasThem() const { return References::AsTheTypeHasThem() && shown_ == 0; }
    // An output of the type's just became the block's own: it takes its mark.
    void MemberReached(std::size_t index) const;

private:
    // Outputs still the type's that the block shows, a bit for each of the first 64; the
    // others are made the block's own to be shown.
    mutable uint64_t shown_ = 0;
};

}  // namespace zerbin
