#include "platform/HostThread.h"

#include <atomic>
#include <thread>

namespace zerbin {
namespace {

// Atomic, since the point is to be read safely by the thread that is not allowed in.
std::atomic<std::thread::id> hostThread{};

}  // namespace

bool ClaimHostThread() noexcept {
    const std::thread::id self = std::this_thread::get_id();
    std::thread::id expected{};
    return hostThread.compare_exchange_strong(expected, self) || expected == self;
}

bool OnHostThread() noexcept {
    const std::thread::id claimed = hostThread.load(std::memory_order_relaxed);
    return claimed == std::thread::id{} || claimed == std::this_thread::get_id();
}

}  // namespace zerbin
