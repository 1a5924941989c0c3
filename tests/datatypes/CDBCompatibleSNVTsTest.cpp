#include "datatypes/CDBCompatibleSNVTs.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "interfaces/Error.h"

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
    const struct {
        const char* list;
        Ids_t ids;
    } rows[] = {
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
    for (const auto& row : rows) {
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

TEST(CDBCompatibleSNVTs, MergeIsTheIntersectionInTheGivenOrder) {
    const struct {
        const char* self;
        const char* given;
        Ids_t ids;
    } rows[] = {
        {"1,2,3", "3,4,1", {"3", "1"}},
        {"", "1,2", {}},
        {"1,2", "", {}},
        {"abc,2", "2,ABC", {"2", "ABC"}},
    };
    for (const auto& row : rows) {
        auto self = SetOf(row.self);
        auto given = SetOf(row.given);
        auto merged = self->ICompatibleSNVTs_Merge(given);
        EXPECT_EQ(Ids(*merged), row.ids) << row.self << " with " << row.given;
        EXPECT_EQ(Ids(*self), Ids(*SetOf(row.self))) << "operands stay";
        EXPECT_EQ(Ids(*given), Ids(*SetOf(row.given))) << "operands stay";
    }
    EXPECT_THROW(SetOf("1")->ICompatibleSNVTs_Merge(nullptr), Error);
}

}  // namespace
}  // namespace zerbin
