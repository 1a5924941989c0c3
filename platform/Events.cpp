#include "platform/Events.h"

#include <utility>

namespace zerbin {
namespace {

std::function<void()>& PumpSlot() {
    static std::function<void()> pump;
    return pump;
}

}  // namespace

void ServePendingEvents() {
    // A copy, because an event handler may install another pump while this one runs.
    if (const std::function<void()> pump = PumpSlot()) {
        pump();
    }
}

void SetEventPump(std::function<void()> pump) {
    PumpSlot() = std::move(pump);
}

}  // namespace zerbin
