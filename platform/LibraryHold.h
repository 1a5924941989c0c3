// What a host may hold after the blocks that gave it are gone (a block's icon) keeps the
// library that made it loaded: its destructor is code of the library, so the library may be
// unloaded only when nothing of the kind is held.
#pragma once

#include <memory>

namespace zerbin {

// How many objects handed out through HeldByHost are alive.
long HeldObjects();

namespace detail {
void AddHold();
void DropHold();
}  // namespace detail

// object, counted among HeldObjects until the last copy of what is returned is gone.
template <class T>
std::shared_ptr<T> HeldByHost(std::shared_ptr<T> object) {
    if (!object) {
        return object;
    }
    struct Held {
        explicit Held(std::shared_ptr<T> held) : object(std::move(held)) { detail::AddHold(); }
        ~Held() { detail::DropHold(); }
        Held(const Held&) = delete;
        Held& operator=(const Held&) = delete;
        std::shared_ptr<T> object;
    };
    auto held = std::make_shared<Held>(std::move(object));
    T* raw = held->object.get();
    return std::shared_ptr<T>(std::move(held), raw);
}

}  // namespace zerbin
