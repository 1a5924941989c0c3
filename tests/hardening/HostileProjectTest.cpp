// Values from elsewhere: a megabyte written to every kind of attribute is kept or refused
// whole, touches no other attribute's bytes and comes back from the project.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Blocks.h"
#include "tests/support/RandomBlock.h"

namespace zerbin::testing {
namespace {

// What sets an attribute apart in how it takes a value.
std::string KindOf(IAttribute& attribute) {
    const auto type = attribute.IAttribute_SNVTType();
    std::string kind = type ? type->ISNVType_GenType() : "none";
    kind += attribute.IAttribute_Fields() ? " fields" : "";
    kind += attribute.IAttribute_IsType() ? " type-selector" : "";
    kind += attribute.IAttribute_IsUnit() ? " unit-selector" : "";
    kind += attribute.IAttribute_IsUnitDependent() ? " unit-dependent" : "";
    kind += attribute.IAttribute_IsDeviceDependent() ? " device" : "";
    kind += attribute.IAttribute_DividedBy() > 1 ? " divided" : "";
    kind += attribute.IAttribute_ToolOnly() ? " tool-only" : "";
    kind += attribute.IAttribute_IsKeepFloatStandard() ? " standard-float" : "";
    return kind;
}

// The first attribute of the shipped library of each kind: block type and place.
std::vector<std::pair<std::string, std::size_t>> OneAttributeOfEachKind() {
    std::vector<std::pair<std::string, std::size_t>> chosen;
    std::set<std::string> kinds;
    for (const std::string& type : TypesOf(DataDir() / "library")) {
        TestBlock block(type, Shipped());
        const auto attributes = AttributesOf(*block);
        for (std::size_t i = 0; i < attributes.size(); ++i) {
            if (kinds.insert(KindOf(*attributes[i])).second) {
                chosen.emplace_back(type, i);
            }
        }
    }
    // Every class of value and the selectors, at the least.
    EXPECT_GE(kinds.size(), 10u);
    return chosen;
}

// The bytes of the image that an attribute owns: [first, end) in digits.
std::pair<std::size_t, std::size_t> OwnDigits(IAttribute& attribute) {
    if (attribute.IAttribute_ToolOnly()) {
        return {0, 0};
    }
    const auto length = attribute.IAttribute_IsKeepFloatStandard()
                            ? 4
                            : attribute.IAttribute_SNVTType()->ISNVType_Length();
    const auto first = static_cast<std::size_t>(attribute.IAttribute_CDBPosition()) * 2;
    return {first, first + static_cast<std::size_t>(length) * 2};
}

// The image with the attribute's own digits blanked out.
std::string OtherDigits(std::string image, IAttribute& attribute) {
    const auto [first, end] = OwnDigits(attribute);
    for (std::size_t i = first; i < end && i < image.size(); ++i) {
        image[i] = '.';
    }
    return image;
}

TEST(HostileProjectTest, MegabyteValuesInEveryAttributeKindAreKeptOrRefusedWhole) {
    constexpr std::size_t kMegabyte = 1u << 20;
    std::string tokens;
    while (tokens.size() < kMegabyte) {
        tokens += "7 ";
    }
    std::string accents;
    while (accents.size() < kMegabyte) {
        accents += "\xC3\xA9";  // e acute, two bytes
    }
    const std::string texts[] = {std::string(kMegabyte, '9'), "1." + std::string(kMegabyte, '5'),
                                 accents, tokens};
    UseLibrary(DataDir() / "library");
    for (const auto& [type, index] : OneAttributeOfEachKind()) {
        for (const std::string& text : texts) {
            TestBlock block(type, Shipped());
            const auto attribute = AttributesOf(*block)[index];
            SCOPED_TRACE(type + "." + attribute->IAttribute_Name() + " <- " + text.substr(0, 8) +
                         "...");
            const std::string before = block->IAppObject_Stream();
            ScopedMessageRecorder recorder;
            attribute->IAttribute_Value(text);

            const bool selector = attribute->IAttribute_IsType() || attribute->IAttribute_IsUnit();
            const bool structure = attribute->IAttribute_Fields() != nullptr;
            const bool divided = attribute->IAttribute_DividedBy() > 1;
            const std::string value = attribute->IAttribute_Value();
            if (divided) {
                EXPECT_LT(value.size(), 100u) << "a quotient is one number";
            } else if (structure) {
                // Fields take one token each; a single token is the first field.
                EXPECT_TRUE(value.size() < 100u || value == text) << value.size() << " bytes";
            } else {
                EXPECT_TRUE(value == text) << "kept " << value.size() << " bytes";
            }
            // A selector tells that no type has that id; nothing else speaks.
            for (const Message& message : recorder.Messages()) {
                EXPECT_TRUE(selector) << message.text.substr(0, 60);
                EXPECT_EQ(message.text, "Error: SNVT_" + text + " is not defined");
            }

            // The image keeps its length and header; an attribute that selects nothing
            // changes none but its own bytes.
            const std::string after = block->IAppObject_Stream();
            ASSERT_EQ(after.size(), before.size());
            EXPECT_EQ(after.substr(0, 6), before.substr(0, 6));
            if (!selector) {
                EXPECT_EQ(OtherDigits(after, *attribute), OtherDigits(before, *attribute));
            }

            // What was kept is kept through the project.
            const SavedBlock saved = Save(*block);
            TestBlock copy(type, Shipped());
            copy->IAppObject_XmlLoad(saved.Element());
            EXPECT_TRUE(AttributeValues(*copy) == AttributeValues(*block));
            EXPECT_EQ(copy->IAppObject_Stream(), after);
        }
    }
}

}  // namespace
}  // namespace zerbin::testing
