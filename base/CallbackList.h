// The listeners of a block or a member, served in order of registration. A listener is kept
// until the list is cleared: there is no removal, and one registered twice hears twice.
#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace zerbin {

template <class L>
class CallbackList {
public:
    void Add(std::shared_ptr<L> listener) { listeners_.push_back(std::move(listener)); }

    // Calls f(L&) for each listener, synchronously and in order of registration. The walk is
    // over a copy: a listener may register more listeners (heard from the next Raise on) or
    // clear the list without pulling the ground from under the walk.
    template <class F>
    void Raise(F&& f) const {
        const std::vector<std::shared_ptr<L>> snapshot = listeners_;
        for (const auto& listener : snapshot) {
            if (listener) {
                f(*listener);
            }
        }
    }

    std::size_t size() const { return listeners_.size(); }
    void Clear() { listeners_.clear(); }

private:
    std::vector<std::shared_ptr<L>> listeners_;
};

}  // namespace zerbin
