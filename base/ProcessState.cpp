#include "base/ProcessState.h"

namespace zerbin {

std::vector<std::shared_ptr<void>>& ProcessState::Parts() {
    static std::vector<std::shared_ptr<void>> parts;
    return parts;
}

std::size_t ProcessState::NextIndex() {
    static std::size_t next = 0;
    return next++;
}

void ProcessState::Reset() {
    // Moved out first: a part's destructor may itself ask for a part.
    std::vector<std::shared_ptr<void>> dropped;
    dropped.swap(Parts());
}

}  // namespace zerbin
