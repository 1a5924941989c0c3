// A value that many holders share until one of them changes it. Reading gives only a const
// view, so a change that forgot to take a copy first does not compile: Write() is the one way
// in, and it copies when anyone else holds the value, or when the value came from outside.
#pragma once

#include <memory>
#include <utility>

namespace zerbin {

template <class T>
class CopyOnWrite {
public:
    // The value a default-made T has, one instance shared by every holder that has not written.
    CopyOnWrite() : value_(Default()) {}
    explicit CopyOnWrite(std::shared_ptr<const T> shared) : value_(std::move(shared)) {}
    // Copies share the value; a move is a copy too, so that no holder is ever left empty.
    CopyOnWrite(const CopyOnWrite&) = default;
    CopyOnWrite& operator=(const CopyOnWrite&) = default;
    ~CopyOnWrite() = default;

    const T& operator*() const { return *value_; }
    const T* operator->() const { return value_.get(); }

    // The value to change, this holder's alone. Strong guarantee: when the copy cannot be made,
    // the value stays as it was, shared.
    T& Write() {
        if (!own_ || value_.use_count() != 1) {
            value_ = std::make_shared<T>(*value_);
            own_ = true;
        }
        // Made above as a T that is not const, by this holder or one it was copied from.
        return const_cast<T&>(*value_);
    }

    // Gives the field of the value the new value; a value equal to the one it holds already
    // writes nothing, so that the holder goes on sharing.
    template <class M, class V>
    void Assign(M T::*field, V&& value) {
        if (!((*value_).*field == value)) {
            Write().*field = std::forward<V>(value);
        }
    }

    // A new value as a default-made T has it, this holder's alone.
    void Reset() {
        value_ = std::make_shared<T>();
        own_ = true;
    }
    // Puts value in place, this holder's alone: no copy of the value it replaces.
    void Set(T value) {
        value_ = std::make_shared<T>(std::move(value));
        own_ = true;
    }

    // The value as it stands, to hand to others who will share it.
    const std::shared_ptr<const T>& Shared() const { return value_; }
    // Takes a value others hold; a later Write() copies it.
    void Share(std::shared_ptr<const T> shared) {
        value_ = std::move(shared);
        own_ = false;
    }
    // Whether the value is still the shared default, never written.
    bool IsDefault() const { return value_ == Default(); }

private:
    static const std::shared_ptr<const T>& Default() {
        static const std::shared_ptr<const T> value = std::make_shared<const T>();
        return value;
    }

    std::shared_ptr<const T> value_;
    // Whether value_ was made by Write(): a value shared in from outside may be const itself
    // and is never written in place.
    bool own_ = false;
};

}  // namespace zerbin
