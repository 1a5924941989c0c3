#include "datatypes/CDBCompatibleSNVTs.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "interfaces/Error.h"
#include "platform/Events.h"

namespace zerbin {
namespace {

std::shared_ptr<CDBCompatibleSNVTs> SetOf(const std::string& list) {
    auto set = std::make_shared<CDBCompatibleSNVTs>();
    set->AddList(list);
    return set;
}

std::vector<std::string> Ids(ICompatibleSNVTs& set) {
    std::vector<std::string> ids;
    for (const auto& entry : set.ICompatibleSNVTs_NewEnum()) {
        ids.push_back(entry->ICompatibleSNVT_ID());
    }
    return ids;
}

using Ids_t = std::vector<std::string>;

TEST(CDBCompatibleSNVTs, AddListTakesTokensUpToTheFirstEmptyOne) {
    struct Row {
        const char* list;
        Ids_t ids;
    };
    const Row rows[] = {
        {"", {}},
        {"105", {"105"}},
        {"105,106,107", {"105", "106", "107"}},
        {",105", {}},
        {"1,,3", {"1"}},
        {"1,2,", {"1", "2"}},
        {"1,2,1", {"1", "2"}},
        {"abc,ABC", {"abc"}},
        {" 12,12", {" 12", "12"}},
        {"a b", {"a b"}},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Ids(*SetOf(row.list)), row.ids) << "list \"" << row.list << "\"";
    }
}

TEST(CDBCompatibleSNVTs, RepeatedAddsMakeOneSetThatAnswersByPositionOrId) {
    auto set = SetOf("1,2,abc");
    set->ICompatibleSNVTs_Add("2,3");
    set->ICompatibleSNVTs_Add("1");
    EXPECT_EQ(Ids(*set), (Ids_t{"1", "2", "abc", "3"}));
    EXPECT_EQ(set->ICompatibleSNVTs_ToString(), "1,2,abc,3");
    EXPECT_EQ(set->ICompatibleSNVTs_Item(2)->ICompatibleSNVT_ID(), "2");
    for (int32_t outside : {0, 5, -1}) {
        EXPECT_EQ(set->ICompatibleSNVTs_Item(outside), nullptr) << outside;
    }
    EXPECT_TRUE(set->ICompatibleSNVTs_Exists("ABC"));
    EXPECT_FALSE(set->ICompatibleSNVTs_Exists("ab"));
    EXPECT_FALSE(set->ICompatibleSNVTs_Exists(""));
    EXPECT_EQ(SetOf("")->ICompatibleSNVTs_ToString(), "");
}

TEST(CDBCompatibleSNVTs, ServesEventsBeforeEachTokenOfAList) {
    auto set = std::make_shared<CDBCompatibleSNVTs>();
    std::vector<int32_t> countsSeen;
    SetEventPump([&] { countsSeen.push_back(set->ICompatibleSNVTs_Count()); });
    set->AddList("7,8,9");
    const auto listTurns = countsSeen.size();
    set->AddList("10");
    SetEventPump({});

    ASSERT_GE(listTurns, 3u);
    EXPECT_EQ((std::vector<int32_t>(countsSeen.begin(), countsSeen.begin() + 3)),
              (std::vector<int32_t>{0, 1, 2}));
    EXPECT_EQ(countsSeen.size(), listTurns) << "a single id is not a list";
}

TEST(CDBCompatibleSNVTs, MergeIsTheIntersectionInTheGivenOrder) {
    struct Row {
        const char* self;
        const char* given;
        Ids_t ids;
    };
    const Row rows[] = {
        {"1,2,3", "3,4,1", {"3", "1"}},
        {"", "1,2", {}},
        {"1,2", "", {}},
        {"abc,2", "2,ABC", {"2", "ABC"}},
    };
    for (const Row& row : rows) {
        auto self = SetOf(row.self);
        auto given = SetOf(row.given);
        auto merged = self->ICompatibleSNVTs_Merge(given);
        EXPECT_EQ(Ids(*merged), row.ids) << row.self << " with " << row.given;
        EXPECT_EQ(Ids(*self), Ids(*SetOf(row.self))) << "operands stay";
        EXPECT_EQ(Ids(*given), Ids(*SetOf(row.given))) << "operands stay";
    }
    EXPECT_THROW(SetOf("1")->ICompatibleSNVTs_Merge(nullptr), Error);
}

TEST(CDBCompatibleSNVTs, CloneSharesNoEntry) {
    auto set = SetOf("1,2,3");
    auto copy = std::dynamic_pointer_cast<CDBCompatibleSNVTs>(set->IClonable_Clone());
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(Ids(*copy), Ids(*set));
    EXPECT_NE(copy->ICompatibleSNVTs_Item(1), set->ICompatibleSNVTs_Item(1));

    copy->ICompatibleSNVTs_Remove("2");
    EXPECT_EQ(Ids(*copy), (Ids_t{"1", "3"}));
    EXPECT_EQ(Ids(*set), (Ids_t{"1", "2", "3"}));
}

TEST(CDBCompatibleSNVTs, RemoveOfAnAbsentIdThrowsAndChangesNothing) {
    auto set = SetOf("1,2");
    EXPECT_THROW(set->ICompatibleSNVTs_Remove("3"), Error);
    EXPECT_EQ(Ids(*set), (Ids_t{"1", "2"}));
    set->ICompatibleSNVTs_Remove("1");
    set->AddList("1");
    EXPECT_EQ(Ids(*set), (Ids_t{"2", "1"})) << "a removed id can come back, at the end";
}

}  // namespace
}  // namespace zerbin
