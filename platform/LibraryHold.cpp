#include "platform/LibraryHold.h"

#include <atomic>

namespace zerbin {
namespace {

std::atomic<long> held{0};

}  // namespace

long HeldObjects() {
    return held.load();
}

namespace detail {

void AddHold() {
    ++held;
}

void DropHold() {
    --held;
}

}  // namespace detail
}  // namespace zerbin
