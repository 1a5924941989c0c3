// The port for "serve pending user-interface events": long loops over members call it once a
// pass so that the host's window stays alive. Headless, it does nothing.
#pragma once

#include <functional>

namespace zerbin {

// Lets queued events of the host run, then returns.
void ServePendingEvents();
// Installs the host's event pump; an empty function restores the no-op.
void SetEventPump(std::function<void()> pump);

}  // namespace zerbin
