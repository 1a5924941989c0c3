// The key of a member of a block: the key of its collection joined with the member's name when
// it is asked for, or a key given whole. A project holds thousands of members, and a key string
// kept by each cost a block as much memory as its values did; the collection's key is shared.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "base/MMain.h"

namespace zerbin {

class MemberKey {
public:
    MemberKey() = default;
    // A key given whole; an empty one is no key.
    MemberKey(std::string whole)  // NOLINT(google-explicit-constructor): a key reads as text
        : text_(whole.empty() ? nullptr : std::make_shared<const std::string>(std::move(whole))) {}

    // The key of a member named name under the collection key owner + suffix: the block's key
    // is held once for all its collections, each naming its own suffix, a literal.
    static MemberKey Under(std::shared_ptr<const std::string> owner, const char* suffix) {
        MemberKey key;
        key.text_ = std::move(owner);
        key.suffix_ = suffix;
        return key;
    }

    // Whether a key was given at all.
    bool Given() const { return text_ != nullptr; }
    // The collection key of Under, else the whole key; empty when none was given.
    std::string Text() const {
        if (!text_) {
            return {};
        }
        return suffix_ != nullptr ? *text_ + suffix_ : *text_;
    }

    std::string Of(const std::string& name) const {
        if (!text_) {
            return {};
        }
        return suffix_ != nullptr ? JoinKey(Text(), name) : *text_;
    }

private:
    std::shared_ptr<const std::string> text_;
    const char* suffix_ = nullptr;  // null for a key given whole
};

}  // namespace zerbin
