#include "base/SharedMembers.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "base/KeyedCollection.h"
#include "base/MemberKey.h"

namespace zerbin {
namespace {

// A member of a block type, copied for a block when the block first reaches it.
struct TypeMember {
    int copies = 0;
    std::string key;
    std::shared_ptr<TypeMember> CopyFor(std::shared_ptr<int>, bool) const {
        auto copy = std::make_shared<TypeMember>(*this);
        ++copy->copies;
        return copy;
    }
    void SetGlobalKey(const MemberKey& under) { key = under.Of("m"); }
    void SetExtendedKey(const MemberKey&) {}
};

// Around 64 members the marks move from a word to a list.
TEST(SharedMembers, ABlockCopiesOnlyWhatItReachesAndGivesItItsKeys) {
    for (const std::size_t count : {std::size_t{3}, std::size_t{64}, std::size_t{70}}) {
        KeyedCollection<TypeMember> items;
        for (std::size_t i = 0; i < count; ++i) {
            items.Add("M" + std::to_string(i), std::make_shared<TypeMember>());
        }
        const auto type = items.Items();
        SharedMembers<TypeMember, int> shared;
        shared.ShareAll(count, std::make_shared<int>(0));
        shared.GiveGlobalKey(items, MemberKey::Under(std::make_shared<const std::string>("K"), ""));
        const std::size_t last = count - 1;
        shared.Reach(items, last);
        shared.Reach(items, last);
        EXPECT_EQ(items.Items()[last]->copies, 1) << count;
        EXPECT_EQ(items.Items()[last]->key, "K\\m") << count;
        EXPECT_FALSE(shared.IsTheTypes(last)) << count;
        EXPECT_TRUE(shared.IsTheTypes(0)) << count;
        EXPECT_EQ(items.Items()[0], type[0]) << count;

        items.Add("Added", std::make_shared<TypeMember>());
        EXPECT_FALSE(shared.IsTheTypes(count)) << count;
        shared.ReachAll(items);
        for (std::size_t i = 0; i < count; ++i) {
            EXPECT_EQ(items.Items()[i]->copies, 1) << count << " " << i;
        }
        EXPECT_EQ(items.Items()[count]->copies, 0) << "added, the block's own: " << count;
        EXPECT_FALSE(shared.IsTheTypes(0)) << count;
    }
}

// A listener given to all members must reach each one without making it the block's own.
TEST(SharedMembers, WhatIsGivenToAllReachesEachMemberOnceWhenTheBlockReachesIt) {
    KeyedCollection<TypeMember> items;
    for (const char* name : {"A", "B", "C"}) {
        items.Add(name, std::make_shared<TypeMember>());
    }
    SharedMembers<TypeMember, int> shared;
    shared.ShareAll(3, std::make_shared<int>(0));
    shared.Reach(items, 0);
    shared.GiveToAll(items, [](TypeMember& member) { member.key += "+"; });
    EXPECT_EQ(items.Items()[0]->key, "+");
    EXPECT_TRUE(shared.IsTheTypes(1));
    EXPECT_EQ(items.Items()[1]->key, "") << "the type's member is left as it is";
    shared.ReachAll(items);
    for (const auto& member : items.Items()) {
        EXPECT_EQ(member->key, "+");
        EXPECT_EQ(member->copies, 1);
    }
}

}  // namespace
}  // namespace zerbin
