#include "cli/ProjectModel.h"

#include <gtest/gtest.h>

namespace zerbin::cli {
namespace {

// flat lists blocks in this order, so that Block10 follows Block9 in a diff of two listings.
TEST(NaturalLess, RunsOfDigitsCompareAsNumbers) {
    const struct {
        const char* a;
        const char* b;
        bool less;
    } rows[] = {
        {"Block2", "Block10", true},
        {"Block10", "Block2", false},
        {"Block9", "Block9", false},
        {"Block007", "Block8", true},
        {"Block08", "Block8", true},  // equal numbers: by text
        {"Block8", "Block08", false},
        {"Block1a", "Block1b", true},
        {"Block1", "Block1a", true},
        {"Block1a", "Block1", false},
        {"a", "b", true},
        {"B", "a", true},
        {"", "a", true},
        {"a", "", false},
        {"10", "9a", false},
        {"x0", "x00", true},
        {"x00", "x0", false},
        {"2x", "10x", true},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(NaturalLess(row.a, row.b), row.less) << row.a << " < " << row.b;
    }
}

}  // namespace
}  // namespace zerbin::cli
