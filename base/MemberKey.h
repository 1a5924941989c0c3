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

    // The key of a member named name under the collection key prefix.
    static MemberKey Under(std::shared_ptr<const std::string> prefix) {
        MemberKey key;
        key.text_ = std::move(prefix);
        key.under_ = true;
        return key;
    }

    // Whether a key was given at all.
    bool Given() const { return text_ != nullptr; }
    // What the key was made from: the collection key of Under, else the whole key.
    const std::string& Text() const {
        static const std::string none;
        return text_ ? *text_ : none;
    }

    std::string Of(const std::string& name) const {
        if (!text_) {
            return {};
        }
        return under_ ? JoinKey(*text_, name) : *text_;
    }

private:
    std::shared_ptr<const std::string> text_;
    bool under_ = false;
};

}  // namespace zerbin
