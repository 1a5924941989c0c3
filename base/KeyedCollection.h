// The ordered keyed collection behind the member collections: attributes, inputs, outputs,
// fields, units and compatible type sets. Members keep the order in which they were added;
// keys are compared without regard to ASCII letter case, and a key may be used once.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/CopyOnWrite.h"
#include "base/MMain.h"
#include "interfaces/Error.h"

namespace zerbin {

template <class T>
class KeyedCollection {
public:
    // Throws Error(DuplicateKey) when the key is taken, in any letter case.
    // Strong guarantee: when it throws, the collection is as it was.
    void Add(const std::string& key, std::shared_ptr<T> item) {
        std::string folded = UpperCase(key);
        if (keys_->index.contains(folded)) {
            throw Error("the key '" + key + "' is taken", ErrorKind::DuplicateKey);
        }
        // Every allocation comes before the index learns the key: after it nothing may fail.
        std::vector<std::shared_ptr<T>>& items = items_.Write();
        MakeRoom(items);
        Keys& keys = keys_.Write();
        MakeRoom(keys.folded);
        std::string kept = folded;
        keys.index.emplace(std::move(folded), items.size());
        items.push_back(std::move(item));
        keys.folded.push_back(std::move(kept));
    }

    // nullptr when no member has the key.
    std::shared_ptr<T> FindKey(std::string_view key) const {
        const std::ptrdiff_t at = KeyIndex(key);
        return at < 0 ? nullptr : (*items_)[static_cast<std::size_t>(at)];
    }

    bool Contains(std::string_view key) const { return KeyIndex(key) >= 0; }

    // By 1-based position; nullptr outside 1 to Count().
    std::shared_ptr<T> At(int32_t position1) const {
        if (position1 < 1 || static_cast<std::size_t>(position1) > items_->size()) {
            return nullptr;
        }
        return (*items_)[static_cast<std::size_t>(position1) - 1];
    }

    // The member with the key, else the member at the 1-based position LeadingNumber(key).
    // A key that is neither (not whole, out of range, no number) gives nullptr; never throws.
    // The key wins, so a member keyed "2" is found by "2" whatever stands at position 2.
    std::shared_ptr<T> Item(std::string_view key) const {
        const std::ptrdiff_t at = IndexOf(key);
        return at < 0 ? nullptr : (*items_)[static_cast<std::size_t>(at)];
    }

    // The 0-based index of the member Item(key) gives; -1 when none.
    std::ptrdiff_t IndexOf(std::string_view key) const {
        if (const std::ptrdiff_t found = KeyIndex(key); found >= 0) {
            return found;
        }
        const double position = LeadingNumber(std::string(key));
        if (!(position >= 1.0) || position > static_cast<double>(items_->size()) ||
            std::floor(position) != position) {
            return -1;
        }
        return static_cast<std::ptrdiff_t>(position) - 1;
    }

    // Puts item in the place of the member at index, under the same key.
    // Throws only when the list, shared still, cannot be copied (OwnItems first makes it never).
    void ReplaceAt(std::size_t index, std::shared_ptr<T> item) {
        items_.Write()[index] = std::move(item);
    }
    // Makes the list of members this collection's own, copied first when it is shared; after it
    // ReplaceAt cannot fail until the collection is copied again.
    void OwnItems() { items_.Write(); }

    // Throws Error(NotFound) when no member has the key.
    void Remove(const std::string& key) {
        const std::string folded = UpperCase(key);
        if (!keys_->index.contains(folded)) {
            throw Error("no member has the key '" + key + "'", ErrorKind::NotFound);
        }
        std::vector<std::shared_ptr<T>>& items = items_.Write();
        Keys& keys = keys_.Write();
        auto it = keys.index.find(folded);
        const std::size_t removed = it->second;
        keys.index.erase(it);
        items.erase(items.begin() + static_cast<std::ptrdiff_t>(removed));
        keys.folded.erase(keys.folded.begin() + static_cast<std::ptrdiff_t>(removed));
        for (std::size_t i = removed; i < keys.folded.size(); ++i) {
            keys.index[keys.folded[i]] = i;
        }
    }

    int32_t Count() const { return static_cast<int32_t>(items_->size()); }

    // The members in order: what NewEnum hands out.
    const std::vector<std::shared_ptr<T>>& Items() const { return *items_; }

    // A collection with the same keys and order whose members are copy(member): how a block
    // made from a compiled type gets its own members. The keys are shared until one of the
    // two collections adds or removes a member.
    template <class Copy>
    KeyedCollection Copied(Copy&& copy) const {
        KeyedCollection result;
        std::vector<std::shared_ptr<T>>& items = result.items_.Write();
        items.reserve(items_->size());
        for (const auto& item : *items_) {
            items.push_back(copy(item));
        }
        result.keys_ = keys_;
        return result;
    }

    void Clear() {
        items_ = {};
        keys_ = {};
    }

private:
    template <class V>
    static void MakeRoom(V& v) {
        if (v.size() == v.capacity()) {
            v.reserve(v.empty() ? 4 : 2 * v.size());
        }
    }

    // Looks keys up as views: a member name is folded into a buffer on the stack, not into a
    // string of its own, on the path every restored value takes.
    struct ViewHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view key) const noexcept {
            return std::hash<std::string_view>{}(key);
        }
    };

    // The position of the member with the key, in any letter case; -1 when none has it.
    std::ptrdiff_t KeyIndex(std::string_view key) const {
        const auto find = [&](std::string_view folded) -> std::ptrdiff_t {
            const auto it = keys_->index.find(folded);
            return it == keys_->index.end() ? -1 : static_cast<std::ptrdiff_t>(it->second);
        };
        constexpr std::size_t kShort = 64;
        if (key.size() <= kShort) {
            std::array<char, kShort> buffer{};
            for (std::size_t i = 0; i < key.size(); ++i) {
                buffer[i] = AsciiUpper(key[i]);
            }
            return find(std::string_view(buffer.data(), key.size()));
        }
        return find(UpperCase(std::string(key)));
    }

    struct Keys {
        std::vector<std::string> folded;  // parallel to items_, for re-indexing on Remove
        // folded key -> position
        std::unordered_map<std::string, std::size_t, ViewHash, std::equal_to<>> index;
    };

    // Both shared with the collections copied from this one (a block's and its type's) until
    // one of them changes.
    CopyOnWrite<std::vector<std::shared_ptr<T>>> items_;
    CopyOnWrite<Keys> keys_;
};

}  // namespace zerbin
