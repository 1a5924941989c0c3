// A selector restored by a switch: the first block of a type whose project switches a selector
// to a value derives its dependents as a change of value does, and what it became is kept with
// the compiled type; the next blocks switched the same way take that instead of deriving.
#include <memory>
#include <string>
#include <utility>

#include "app_object/CDBAppObject.h"
#include "app_object/CompiledBlockType.h"
#include "base/SkipMode.h"
#include "connections/CDBInputs.h"
#include "connections/CDBOutputs.h"
#include "parameters/CDBAttributes.h"
#include "platform/Messages.h"

namespace zerbin {

bool CDBAppObject::MayTakeVariant() const {
    // A listener, an interceptor or a container would hear of the change or steer it, and a
    // block with members of its own may differ from its type in what the change derives.
    return compiled_ && !typeChange_ && !seldom_->interceptor && !parent_ && attributes_ &&
           attributes_->AsTheTypeHasThem() && (!inputs_ || inputs_->AsTheTypeHasThem()) &&
           (!outputs_ || outputs_->AsTheTypeHasThem());
}

void CDBAppObject::RestoreSelector(std::size_t index, const std::string& text) {
    const bool mayTake = MayTakeVariant();
    std::pair<std::size_t, std::string> key(index, text);
    if (mayTake) {
        const auto found = compiled_->variants.find(key);
        if (found != compiled_->variants.end()) {
            TakeVariant(found->second);
            return;
        }
    }
    const std::shared_ptr<const CompiledBlockType> from = compiled_;
    ScopedMessageCapture capture;
    const std::shared_ptr<CDBAttribute> selector = attributes_->At(index);
    const bool ran = SkipStep([&] { selector->RestoreSavedValue(text); });
    if (!mayTake || !ran || !capture.Messages().empty() || compiled_ != from) {
        return;
    }
    std::shared_ptr<CompiledBlockType> variant = Compile({});
    variant->definition = from->definition;
    variant->ownerDevice = from->ownerDevice;
    from->variants.emplace(std::move(key), std::move(variant));
}

void CDBAppObject::TakeVariant(const std::shared_ptr<const CompiledBlockType>& variant) {
    // The collections stay, with their keys: only the members they start from change.
    if (attributes_ && variant->attributes) {
        attributes_->TakeMembersOf(*variant->attributes);
    }
    if (inputs_ && variant->inputs) {
        inputs_->TakeMembersOf(*variant->inputs);
    }
    if (outputs_ && variant->outputs) {
        outputs_->TakeMembersOf(*variant->outputs);
    }
    compiled_ = variant;
}

}  // namespace zerbin
