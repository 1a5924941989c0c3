#include "base/KeyedCollection.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "base/CallbackList.h"
#include "base/SharedMembers.h"
#include "interfaces/Error.h"

namespace zerbin {
namespace {

struct Member {
    std::string name;
};

KeyedCollection<Member> Collection(const std::vector<std::string>& keys) {
    KeyedCollection<Member> collection;
    for (const std::string& key : keys) {
        collection.Add(key, std::make_shared<Member>(Member{key}));
    }
    return collection;
}

std::string NameOf(const std::shared_ptr<Member>& member) {
    return member ? member->name : "<none>";
}

TEST(KeyedCollection, KeepsInsertionOrderAndFindsKeysInAnyCase) {
    const auto collection = Collection({"Zeta", "alpha", "Mid"});
    ASSERT_EQ(collection.Count(), 3);
    EXPECT_EQ(NameOf(collection.Items()[0]), "Zeta");
    EXPECT_EQ(NameOf(collection.Items()[2]), "Mid");
    EXPECT_EQ(NameOf(collection.FindKey("ALPHA")), "alpha");
    EXPECT_EQ(NameOf(collection.FindKey("zeta")), "Zeta");
    EXPECT_EQ(collection.FindKey("Alph"), nullptr);
    EXPECT_TRUE(collection.Contains("mid"));
    EXPECT_EQ(NameOf(collection.At(1)), "Zeta");
    EXPECT_EQ(collection.At(0), nullptr);
    EXPECT_EQ(collection.At(4), nullptr);
}

TEST(KeyedCollection, ItemLooksUpTheKeyFirstThenThePosition) {
    const auto collection = Collection({"a", "b", "2", "c"});
    const struct {
        const char* key;
        const char* expected;
    } rows[] = {
        {"2", "2"},  // the key wins over position 2
        {"B", "b"},       {"1", "a"},          {"4", "c"},        {"3abc", "2"},
        {" 4", "c"},      {"4.0", "c"},        {"&H1", "a"},      {"0", "<none>"},
        {"", "<none>"},   {"abc", "<none>"},   {"1.5", "<none>"}, {"5", "<none>"},
        {"-1", "<none>"}, {"1e400", "<none>"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(NameOf(collection.Item(row.key)), row.expected) << '"' << row.key << '"';
    }
}

TEST(KeyedCollection, RemoveReindexesTheMembersAfterTheRemovedOne) {
    auto collection = Collection({"a", "b", "c", "d"});
    collection.Remove("B");
    EXPECT_FALSE(collection.Contains("b"));
    EXPECT_EQ(NameOf(collection.FindKey("c")), "c");
    EXPECT_EQ(NameOf(collection.FindKey("D")), "d");
    EXPECT_EQ(NameOf(collection.Item("3")), "d");
    EXPECT_THROW(collection.Remove("b"), Error);
}

struct Listener {
    std::vector<std::string>* log;
    std::string name;
    void Heard(const std::string& what) { log->push_back(name + ":" + what); }
};

TEST(CallbackList, ServesListenersInOrderOfRegistrationDuplicatesIncluded) {
    std::vector<std::string> log;
    auto first = std::make_shared<Listener>(Listener{&log, "first"});
    auto second = std::make_shared<Listener>(Listener{&log, "second"});
    CallbackList<Listener> list;
    list.Add(first);
    list.Add(second);
    list.Add(first);
    list.Raise([](Listener& l) { l.Heard("x"); });
    EXPECT_EQ(log, (std::vector<std::string>{"first:x", "second:x", "first:x"}));
    EXPECT_EQ(list.size(), 3U);
}

TEST(CallbackList, AListenerMayRegisterAnotherWhileBeingServed) {
    std::vector<std::string> log;
    CallbackList<Listener> list;
    auto late = std::make_shared<Listener>(Listener{&log, "late"});
    list.Add(std::make_shared<Listener>(Listener{&log, "early"}));
    list.Raise([&](Listener& l) {
        l.Heard("1");
        for (int i = 0; i < 100; ++i) {  // enough to make the list reallocate
            list.Add(late);
        }
    });
    EXPECT_EQ(log, (std::vector<std::string>{"early:1"}));
    EXPECT_EQ(list.size(), 101U);
    list.Clear();
    EXPECT_EQ(list.size(), 0U);
}

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
        shared.GiveGlobalKey(items, MemberKey::Under(std::make_shared<const std::string>("K")));
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
