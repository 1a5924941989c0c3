#include "base/MMain.h"

#include <cstdint>
#include <limits>
#include <new>
#include <stdexcept>

#include "base/ProcessState.h"
#include "base/SkipMode.h"
#include "interfaces/Error.h"
#include "tests/support/TestSupport.h"

namespace zerbin {
namespace {

using zerbin::testing::ScopedLocale;

TEST(NthToken, PicksTokensByTheirSeparatorCount) {
    const struct {
        const char* text;
        int32_t index;
        const char* separator;
        const char* expected;
    } rows[] = {
        {"a;b;c", 2, ";", "c"},      {"a;b;c", 3, ";", ""},
        {"abc", 0, ";", ""},  // no separator: not the whole text
        {"a;b", -1, ";", ""},        {"a;;c", 2, ";", "c"},
        {"0,OFF;1,ON;", 2, ";", ""},  // the trailing separator ends the list
        {"0,OFF", 1, ",", "OFF"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(NthToken(row.text, row.index, row.separator), row.expected)
            << '"' << row.text << "\" index " << row.index;
    }
}

// The byte form clamps only from above and formats the low byte; the word form clamps at
// 65535. Both write the clamped value back into the caller's variable.
TEST(HexDigits, FormatTheLowBytesAndClampTheCallersVariable) {
    const struct {
        bool word;
        int32_t value;
        const char* expected;
        int32_t afterwards;
    } rows[] = {
        {false, 10, "0A", 10},
        {false, 256, "FF", 255},
        {false, -1, "FF", -1},
        {false, -44, "D4", -44},
        {false, std::numeric_limits<int32_t>::min(), "00", std::numeric_limits<int32_t>::min()},
        {true, 65535, "FFFF", 65535},
        {true, 65536, "FFFF", 65535},
        {true, 258, "0102", 258},
    };
    for (const auto& row : rows) {
        int32_t value = row.value;
        EXPECT_EQ(row.word ? HexWord(value) : HexByte(value), row.expected) << row.value;
        EXPECT_EQ(value, row.afterwards) << row.value;
        if (!row.word) {
            EXPECT_EQ(HexByteOf(row.value), row.expected) << row.value;
        }
    }
}

TEST(NvReferenceCode, CombinesIndexAndExportIndexUnderSelectorTwoWithinInt32) {
    EXPECT_EQ(NvReferenceCode(3, 2), 2 * 256 + 16384 + 3);
    EXPECT_EQ(HexWordOf(NvReferenceCode(3, 2)), "4203");
    EXPECT_EQ(NvReferenceCode(256, 0), 0x4100);  // an export index past 255 carries over
    EXPECT_EQ(NvReferenceCode(0, -64), 0);
    // Each step is checked against the 32-bit range, not only the result.
    EXPECT_THROW(NvReferenceCode(0, 8388608), OverflowError);       // the product
    EXPECT_THROW(NvReferenceCode(-20000, 8388607), OverflowError);  // late recovery is no help
    EXPECT_EQ(NvReferenceCode(255, 8388543), std::numeric_limits<int32_t>::max());
}

TEST(AppendElement, AddsTextUnlessGivenTheExactMarker) {
    pugi::xml_document doc;
    pugi::xml_node root = doc.append_child("Root");

    pugi::xml_node withText = AppendElement(doc, root, "Name", "Pump 1");
    pugi::xml_node empty = AppendElement(doc, root, "Empty", "");
    pugi::xml_node bare = AppendElement(doc, root, "Bare", kNoTextField);
    pugi::xml_node lower = AppendElement(doc, root, "Lower", "notextfield");

    EXPECT_EQ(root.last_child(), lower);
    EXPECT_STREQ(withText.first_child().value(), "Pump 1");
    ASSERT_TRUE(empty.first_child());
    EXPECT_EQ(empty.first_child().type(), pugi::node_pcdata);
    EXPECT_STREQ(empty.first_child().value(), "");
    EXPECT_FALSE(bare.first_child());
    EXPECT_STREQ(lower.first_child().value(), "notextfield");
}

struct Counter {
    int value = 7;
};

TEST(ProcessStateTest, APartLivesUntilResetAndThenStartsAgain) {
    ProcessState::Get<Counter>().value = 1;
    EXPECT_EQ(ProcessState::Get<Counter>().value, 1);

    SetSnvtDictionary(std::make_shared<pugi::xml_document>());
    ProcessState::Reset();
    EXPECT_EQ(ProcessState::Get<Counter>().value, 7);
    EXPECT_EQ(DecimalSeparator(), ".");
    EXPECT_EQ(SnvtDictionary(), nullptr);
}

// A failing step is dropped; running out of memory and a file that cannot be read are not
// failing steps but failures the user must hear of.
TEST(SkipStep, DropsFailuresButNotOutOfMemoryOrUnreadableFiles) {
    EXPECT_TRUE(SkipStep([] {}));
    EXPECT_FALSE(SkipStep([] { throw Error("step failed"); }));
    EXPECT_FALSE(SkipStep([] { throw std::runtime_error("anything else"); }));
    EXPECT_THROW(SkipStep([] { throw std::bad_alloc(); }), std::bad_alloc);
    EXPECT_THROW(SkipStep([] { throw IoError("T.xml", "input/output error", 5); }), IoError);
}

}  // namespace
}  // namespace zerbin
