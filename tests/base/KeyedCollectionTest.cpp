#include "base/KeyedCollection.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

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

}  // namespace
}  // namespace zerbin
