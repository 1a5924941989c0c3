// The members of a block's collection (attributes, inputs, outputs) when the block is made from
// a compiled type. Each member is the type's, shared by every block of the type, until the
// block first reaches it; the block's own copy then takes its place, with the keys the block
// has given since. A block that only compares its members with the type's (its image) or finds
// them as the type has them (most values of a project) copies none.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "base/KeyedCollection.h"
#include "base/MemberKey.h"

namespace zerbin {

// T has CopyFor(std::shared_ptr<Owner>, bool share), SetGlobalKey(MemberKey) and
// SetExtendedKey(MemberKey); a T with Release() is released when its copy cannot be finished.
template <class T, class Owner>
class SharedMembers {
public:
    // Every one of count members is the type's, to be copied under owner when reached.
    void ShareAll(std::size_t count, std::shared_ptr<Owner> owner) {
        if (count <= kInline) {
            inline_ = count == kInline ? ~uint64_t{0} : (uint64_t{1} << count) - 1;
            more_.reset();
        } else {
            inline_ = 0;
            more_ = std::make_unique<std::vector<bool>>(count, true);
        }
        count_ = count;
        owner_ = count > 0 ? std::move(owner) : nullptr;
        later_.reset();
    }

    // False for a member added after ShareAll: the block's own from the start.
    bool IsTheTypes(std::size_t index) const {
        if (count_ == 0) {
            return false;
        }
        return !more_ ? index < kInline && ((inline_ >> index) & 1) != 0
                      : index < more_->size() && (*more_)[index];
    }

    // Takes from's members, those of another compiled form of the same type, in place of the
    // type's, every one of them unreached again; the owner and the keys given stay.
    void Rebase(KeyedCollection<T>& items, const KeyedCollection<T>& from) {
        items = from;
        ShareAll(items.Items().size(), owner_);
    }

    // Whether something given to all members waits for the ones not yet reached.
    bool HasLaterActs() const { return later_ != nullptr; }
    // Whether each of total members is still the type's, with nothing waiting to be given.
    bool NoneReached(std::size_t total) const { return count_ == total && !later_; }

    // Calls act(member) for every member the block has reached: the type's are not the
    // block's to change.
    template <class Act>
    void ForEachOwn(const KeyedCollection<T>& items, Act&& act) const {
        const auto& members = items.Items();
        for (std::size_t i = 0; i < members.size(); ++i) {
            if (!IsTheTypes(i)) {
                act(*members[i]);
            }
        }
    }

    // Gives the key to every member the block has reached, and keeps it for the ones it
    // reaches later.
    void GiveGlobalKey(const KeyedCollection<T>& items, const MemberKey& under) {
        global_ = under;
        ForEachOwn(items, [&](T& member) { member.SetGlobalKey(under); });
    }
    void GiveExtendedKey(const KeyedCollection<T>& items, const MemberKey& under) {
        extended_ = under;
        ForEachOwn(items, [&](T& member) { member.SetExtendedKey(under); });
    }

    // Calls act(member) for every member the block has reached now, and for each of the
    // others when the block reaches it: what is given to all of a block's members (a listener)
    // must not make each of them the block's own.
    void GiveToAll(const KeyedCollection<T>& items, std::function<void(T&)> act) {
        ForEachOwn(items, act);
        if (count_ > 0) {
            if (later_) {
                later_->push_back(std::move(act));
            } else {
                auto list = std::make_unique<std::vector<std::function<void(T&)>>>();
                list->push_back(std::move(act));
                later_ = std::move(list);
            }
        }
    }

    // The keys given last; no key when none was given.
    const MemberKey& GlobalKey() const { return global_; }
    const MemberKey& ExtendedKey() const { return extended_; }

    // The block is going: the members not yet reached need no owner any more.
    void Forget() {
        owner_.reset();
        later_.reset();
    }

    // Puts the block's own copy in place of the member at index when it is still the type's.
    void Reach(KeyedCollection<T>& items, std::size_t index) {
        if (!IsTheTypes(index)) {
            return;
        }
        // The list is copied before the member: once made, the member holds its owner, and
        // nothing after its making may fail outside the guard below.
        items.OwnItems();
        auto own = items.Items()[index]->CopyFor(owner_, true);
        try {
            if (global_.Given()) {
                own->SetGlobalKey(global_);
            }
            if (extended_.Given()) {
                own->SetExtendedKey(extended_);
            }
            if (later_) {
                for (const std::function<void(T&)>& act : *later_) {
                    act(*own);
                }
            }
        } catch (...) {
            if constexpr (requires { own->Release(); }) {
                own->Release();  // what refers back to it would keep it alive by itself
            }
            throw;
        }
        items.ReplaceAt(index, std::move(own));
        if (!more_) {
            inline_ &= ~(uint64_t{1} << index);
        } else {
            (*more_)[index] = false;
        }
        if (--count_ == 0) {
            // Every member holds its owner now; the list need not.
            more_.reset();
            owner_.reset();
            later_.reset();
        }
    }

    void ReachAll(KeyedCollection<T>& items) {
        for (std::size_t i = 0; count_ > 0 && i < items.Items().size(); ++i) {
            Reach(items, i);
        }
    }

private:
    // Per member: still the type's; a block type has rarely more than 64 members, whose marks
    // need no allocation of their own.
    static constexpr std::size_t kInline = 64;
    uint64_t inline_ = 0;
    std::unique_ptr<std::vector<bool>> more_;
    // Members still the type's; none once every one is reached.
    std::size_t count_ = 0;
    std::shared_ptr<Owner> owner_;
    MemberKey global_;
    MemberKey extended_;
    // What was given to all members, for those reached later; nullptr until something is.
    std::unique_ptr<std::vector<std::function<void(T&)>>> later_;
};

}  // namespace zerbin
