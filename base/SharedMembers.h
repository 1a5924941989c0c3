// The members of a block's collection (attributes, inputs, outputs) when the block is made from
// a compiled type. Each member is the type's, shared by every block of the type, until the
// block first reaches it; the block's own copy then takes its place, with the keys the block
// has given since. A block that only compares its members with the type's (its image) or finds
// them as the type has them (most values of a project) copies none.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
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
        types_.assign(count, true);
        count_ = count;
        owner_ = count > 0 ? std::move(owner) : nullptr;
    }

    bool IsTheTypes(std::size_t index) const { return index < types_.size() && types_[index]; }

    // A member added later is the block's own from the start.
    void NoteAdded() {
        if (!types_.empty()) {
            types_.push_back(false);
        }
    }
    void NoteGlobalKey(const MemberKey& under) { global_ = under; }
    void NoteExtendedKey(const MemberKey& under) { extended_ = under; }

    // The block is going: the members not yet reached need no owner any more.
    void Forget() {
        owner_.reset();
        global_.reset();
        extended_.reset();
    }

    // Puts the block's own copy in place of the member at index when it is still the type's.
    void Reach(KeyedCollection<T>& items, std::size_t index) {
        if (!IsTheTypes(index)) {
            return;
        }
        auto own = items.Items()[index]->CopyFor(owner_, true);
        try {
            if (global_) {
                own->SetGlobalKey(*global_);
            }
            if (extended_) {
                own->SetExtendedKey(*extended_);
            }
        } catch (...) {
            if constexpr (requires { own->Release(); }) {
                own->Release();  // what refers back to it would keep it alive by itself
            }
            throw;
        }
        items.ReplaceAt(index, std::move(own));
        types_[index] = false;
        if (--count_ == 0) {
            // Every member holds its owner now; the list need not.
            types_.clear();
            owner_.reset();
        }
    }

    void ReachAll(KeyedCollection<T>& items) {
        for (std::size_t i = 0; count_ > 0 && i < types_.size(); ++i) {
            Reach(items, i);
        }
    }

private:
    // Per member: still the type's. Empty when every member is the block's own.
    std::vector<bool> types_;
    std::size_t count_ = 0;
    std::shared_ptr<Owner> owner_;
    std::optional<MemberKey> global_;
    std::optional<MemberKey> extended_;
};

}  // namespace zerbin
