// The bytes an input contributes to the image, in both byte orders.

#include "connections/CDBInput.h"
#include "interfaces/Error.h"
#include "tests/support/FakeAppObject.h"
#include "tests/support/TestSupport.h"

namespace zerbin {
namespace {

using namespace zerbin::testing;

// Twelve bytes whose digits tell their offset: byte P is "0P".
constexpr const char* kImage = "000102030405060708090A0B";

std::shared_ptr<CDBInput> MakeInput(bool extended, int32_t position, const std::string& value) {
    auto element = ParseElement(extended ? R"(<In ISEXTENDED=""/>)" : "<In/>");
    auto input = std::make_shared<CDBInput>();
    input->SetParent(std::make_shared<FakeAppObject>());
    input->SetName("In");
    input->LoadDefinition(element.node);
    input->CDBPosition(position);
    input->IInput_Value(value);
    return input;
}

TEST(InputStream, WritesTheReferenceInBothByteOrders) {
    const struct {
        const char* value;
        bool extended;
        int32_t position;
        const char* stream;  // expected image, most significant byte first, blanks aside
        const char* intel;   // expected image of the Intel form; nullptr: raises
    } rows[] = {
        // A reference to an output (selector 2): only the first byte turns.
        {"4203", false, 5, "00 01 02 03 04 42 03 07 08 09 0A 0B",
         "00 01 02 03 04 12 03 07 08 09 0A 0B"},
        // Any other selector: the last byte turns by two places as well.
        {"2345", false, 5, "00 01 02 03 04 23 45 07 08 09 0A 0B",
         "00 01 02 03 04 19 15 07 08 09 0A 0B"},
        {"234501", true, 5, "00 01 02 03 04 23 45 01 08 09 0A 0B",
         "00 01 02 03 04 19 15 01 08 09 0A 0B"},
        {"E1FF", false, 0, "E1 FF 02 03 04 05 06 07 08 09 0A 0B",
         "0F FF 02 03 04 05 06 07 08 09 0A 0B"},
        // Never given a reference: the image keeps what it held, in both forms.
        {"", false, 5, "00 01 02 03 04 05 06 07 08 09 0A 0B",
         "00 01 02 03 04 05 06 07 08 09 0A 0B"},
        // A longer value gives only the reference's width; a shorter one only its own length.
        {"423456", false, 2, "00 01 42 34 04 05 06 07 08 09 0A 0B",
         "00 01 12 56 04 05 06 07 08 09 0A 0B"},
        {"4203", true, 2, "00 01 42 03 04 05 06 07 08 09 0A 0B",
         "00 01 12 03 03 05 06 07 08 09 0A 0B"},
        // The plain form parses nothing; the Intel form writes upper-case digits for what it
        // rotates and copies the rest as it stands.
        {"4a0b", false, 2, "00 01 4a 0b 04 05 06 07 08 09 0A 0B",
         "00 01 52 0b 04 05 06 07 08 09 0A 0B"},
        {"ZZ!?", false, 2, "00 01 ZZ !? 04 05 06 07 08 09 0A 0B", nullptr},
        // At the end of the image the reference is cut, never appended.
        {"4203", false, 11, "00 01 02 03 04 05 06 07 08 09 0A 42",
         "00 01 02 03 04 05 06 07 08 09 0A 12"},
        {"234501", true, 10, "00 01 02 03 04 05 06 07 08 09 23 45",
         "00 01 02 03 04 05 06 07 08 09 19 15"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.value) + " at " + std::to_string(row.position) +
                     (row.extended ? " extended" : ""));
        auto strip = [](std::string text) {
            std::erase(text, ' ');
            return text;
        };
        auto input = MakeInput(row.extended, row.position, row.value);
        EXPECT_EQ(input->WriteStream(kImage), strip(row.stream));
        if (row.intel != nullptr) {
            EXPECT_EQ(input->WriteIntelStream(kImage), strip(row.intel));
        }
    }
}

TEST(InputStream, TheIntelFormRaisesOnAReferenceItCannotRead) {
    const struct {
        const char* value;
        bool extended;
    } rows[] = {
        {"ZZ03", false},  {"4G03", false}, {" 4203", false},
        {"-103", false},  {"23ZZ", false},  // selector 1: the last byte is rotated, so it is read
        {"23ZZ01", true},                   // selector 1: the second byte is rotated
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.value);
        auto input = MakeInput(row.extended, 2, row.value);
        EXPECT_THROW(input->WriteIntelStream(kImage), Error);
        EXPECT_NO_THROW(input->WriteStream(kImage));
    }
}

}  // namespace
}  // namespace zerbin
