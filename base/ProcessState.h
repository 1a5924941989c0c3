// What the process shares between its blocks, held in one object: the installed dictionary and
// decimal separator, the indexes and caches built from the documents, the definition store and
// the host's ports. Each folder declares its own part (a struct with its starting values) and
// reaches it through ProcessState::Get, so the state stays in the layer that knows its type
// while one Reset starts the whole process afresh. Everything runs on the host's user-interface
// thread, so the parts are plain data.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace zerbin {

class ProcessState {
public:
    // The part of type Part, made with its starting values on first use after a Reset.
    template <class Part>
    static Part& Get() {
        static const std::size_t index = NextIndex();
        std::vector<std::shared_ptr<void>>& parts = Parts();
        if (parts.size() <= index) {
            parts.resize(index + 1);
        }
        std::shared_ptr<void>& slot = parts[index];
        if (!slot) {
            slot = std::make_shared<Part>();
        }
        return *static_cast<Part*>(slot.get());
    }

    // Drops every part, for tests: what comes next finds the process as it started. A
    // reference taken from Get before the reset must not be used after it.
    static void Reset();

private:
    static std::vector<std::shared_ptr<void>>& Parts();
    static std::size_t NextIndex();
};

}  // namespace zerbin
