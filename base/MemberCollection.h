// What the three member collections of a block (attributes, inputs, outputs) are alike: members
// in the order the definition gives them, found by name in any letter case, keys handed to
// every member, and members shared with the block's compiled type until the block first
// reaches them (SharedMembers). Each collection adds only its interface and what its members
// need besides.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/KeyedCollection.h"
#include "base/MemberKey.h"
#include "base/SharedMembers.h"

namespace zerbin {

// Derived is the collection (CRTP). T has what SharedMembers asks of its members; Derived may
// define CopyFiguresFrom(const Derived&), for what it keeps besides the members, and
// MemberReached(std::size_t), told when a member of the type's has just become the block's.
template <class Derived, class T, class Owner>
class MemberCollection {
public:
    int32_t Count() const { return items_.Count(); }

    // Every member, each the block's own.
    const std::vector<std::shared_ptr<T>>& Members() const {
        for (std::size_t i = 0; i < items_.Items().size(); ++i) {
            Reach(i);
        }
        return items_.Items();
    }
    // For the image and the restore of values, which only read: the members as they stand,
    // the type's where the block has not reached them. Never to be changed or handed out, nor
    // held across a call that may reach a member: the block may then hold a list of its own.
    const std::vector<std::shared_ptr<T>>& AsTheyStand() const { return items_.Items(); }
    // Whether the member at index is still the type's.
    bool IsTheTypes(std::size_t index) const { return shared_.IsTheTypes(index); }
    // The member at index, the block's own (copied first if it was the type's).
    std::shared_ptr<T> At(std::size_t index) const {
        Reach(index);
        return items_.Items()[index];
    }
    // The index of the member Item(key) gives, without reaching it; -1 when none.
    std::ptrdiff_t IndexOf(std::string_view key) const { return items_.IndexOf(key); }
    // By key, else by 1-based position (KeyedCollection::Item); nullptr when none.
    std::shared_ptr<T> Item(std::string_view key) const {
        const std::ptrdiff_t at = items_.IndexOf(key);
        return at < 0 ? nullptr : At(static_cast<std::size_t>(at));
    }

    // The collection's keys, owner + suffix: held once, by the key its members are given, and
    // the owner's key shared by all its collections. The suffix is a literal.
    std::string GlobalKey() const { return shared_.GlobalKey().Text(); }
    std::string ExtendedKey() const { return shared_.ExtendedKey().Text(); }
    void PropagateGlobalKey(const std::shared_ptr<const std::string>& owner, const char* suffix) {
        shared_.GiveGlobalKey(items_, MemberKey::Under(owner, suffix));
    }
    void PropagateExtendedKey(const std::shared_ptr<const std::string>& owner, const char* suffix) {
        shared_.GiveExtendedKey(items_, MemberKey::Under(owner, suffix));
    }

    // Calls act on every member: at once on those the block has made its own, on the others
    // when the block first reaches them, so that giving all members something makes none.
    void GiveToAll(std::function<void(T&)> act) { shared_.GiveToAll(items_, std::move(act)); }

    // Every member copied (T::CopyFor) under owner; no key, no listener.
    std::shared_ptr<Derived> CopyFor(const std::shared_ptr<Owner>& owner, bool share) const {
        Members();
        auto copy = std::make_shared<Derived>();
        copy->CopyFiguresFrom(Self());
        copy->items_ = items_.Copied(
            [&](const std::shared_ptr<T>& member) { return member->CopyFor(owner, share); });
        return copy;
    }
    // The members of a block made from a compiled type, of which this is the collection: each
    // stays the type's until the block first reaches it through any of the accessors above,
    // and is copied under owner only then. This collection must never change afterwards.
    std::shared_ptr<Derived> SharedFor(const std::shared_ptr<Owner>& owner) const {
        auto shared = std::make_shared<Derived>();
        shared->CopyFiguresFrom(Self());
        shared->items_ = items_;
        shared->shared_.ShareAll(items_.Items().size(), owner);
        return shared;
    }
    // The members of variant, a collection of another compiled form of the same type, in
    // place of the type's ones: for a collection whose members are all the type's still.
    // The keys stay.
    void TakeMembersOf(const Derived& variant) { shared_.Rebase(items_, variant.items_); }
    // Whether every member is still the type's, with nothing waiting to be given to them.
    bool NoneReached() const { return shared_.NoneReached(items_.Items().size()); }

    // Nothing of its own besides the members by default.
    void CopyFiguresFrom(const Derived&) {}
    void MemberReached(std::size_t) const {}

protected:
    MemberCollection() = default;
    ~MemberCollection() = default;
    MemberCollection(const MemberCollection&) = delete;
    MemberCollection& operator=(const MemberCollection&) = delete;

    // Makes the member at index the block's own when it is still the type's.
    void Reach(std::size_t index) const {
        if (!shared_.IsTheTypes(index)) {
            return;
        }
        shared_.Reach(items_, index);
        Self().MemberReached(index);
    }
    // Calls act on each member the block has made its own.
    template <class Act>
    void ForEachOwn(Act&& act) const {
        shared_.ForEachOwn(items_, std::forward<Act>(act));
    }
    // The block is going: the members not yet reached need no owner any more.
    void ForgetTheTypes() { shared_.Forget(); }

    // Mutable: reaching a member of the type's replaces it with the block's copy, a change that
    // no reader can tell from a collection that held the copy from the start.
    mutable KeyedCollection<T> items_;
    mutable SharedMembers<T, Owner> shared_;

private:
    const Derived& Self() const { return static_cast<const Derived&>(*this); }
};

}  // namespace zerbin
