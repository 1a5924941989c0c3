// The engine runs on one thread, the host's user-interface thread, and locks nothing. The
// entry points a host calls check that rule here, cheaply, instead of letting a second thread
// race the first through shared state.
#pragma once

namespace zerbin {

// Claims the calling thread as the host's when none is claimed yet; true when the calling
// thread is the host's. Called by every entry point that makes an object.
bool ClaimHostThread() noexcept;

// True when no thread is claimed yet or the calling thread is the one claimed.
bool OnHostThread() noexcept;

}  // namespace zerbin
