// The C interface of libzerbin.so.1 as a C host uses it: blocks of the shipped library, values
// through the editors' rules, text handed out as snprintf does, projects, the thread rule.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "zerbin/zerbin.h"

namespace {

namespace fs = std::filesystem;

const std::string kData = ZERBIN_DATA_DIR;

class CInterfaceTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(ZerbinOpenLibrary((kData + "/library").c_str(), (kData + "/snvts.xml").c_str(),
                                    (kData + "/devices/Controller.xml").c_str()),
                  ZERBIN_OK)
            << ZerbinLastError();
    }
};

// A text handed out by one of the buffer functions, whole.
template <typename Read>
std::string Text(Read read) {
    size_t length = 0;
    EXPECT_EQ(read(nullptr, 0, &length), ZERBIN_OK) << ZerbinLastError();
    std::string text(length + 1, '\0');
    EXPECT_EQ(read(text.data(), text.size(), &length), ZERBIN_OK);
    text.resize(length);
    return text;
}

std::string Value(ZerbinBlock* block, const char* attribute) {
    return Text(
        [&](char* b, size_t s, size_t* l) { return ZerbinBlockValue(block, attribute, b, s, l); });
}

std::string Image(ZerbinBlock* block, int intel = 0) {
    return Text(
        [&](char* b, size_t s, size_t* l) { return ZerbinBlockImage(block, intel, b, s, l); });
}

TEST_F(CInterfaceTest, ValuesGoThroughTheEditorsRules) {
    struct Row {
        const char* attribute;
        const char* value;
        int result;
        const char* stored;  // what the attribute holds afterwards
    };
    const Row rows[] = {
        {"Gain", "4", ZERBIN_OK, "4"},
        {"Gain", "abc", ZERBIN_E_REFUSED, "2.5"},
        {"Gain", "1001", ZERBIN_E_REFUSED, "2.5"},
        {"Action", "Sideways", ZERBIN_E_REFUSED, "1"},
        {"NoSuchAttribute", "1", ZERBIN_E_NOT_FOUND, nullptr},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.attribute) + "=" + row.value);
        ZerbinBlock* block = nullptr;
        ASSERT_EQ(ZerbinBlockNew("PID_LOOP", &block), ZERBIN_OK) << ZerbinLastError();
        const std::string before = Image(block);
        EXPECT_EQ(ZerbinBlockSetValue(block, row.attribute, row.value), row.result);
        EXPECT_EQ(std::string(ZerbinLastError()).empty(), row.result == ZERBIN_OK);
        if (row.stored != nullptr) {
            EXPECT_EQ(Value(block, row.attribute), row.stored);
        }
        EXPECT_EQ(Image(block) == before, row.result != ZERBIN_OK);
        ZerbinBlockFree(block);
    }
}

TEST_F(CInterfaceTest, TextIsHandedOutAsSnprintfDoes) {
    ZerbinBlock* block = nullptr;
    ASSERT_EQ(ZerbinBlockNew("PID_LOOP", &block), ZERBIN_OK);
    const std::string image = Image(block);
    ASSERT_GT(image.size(), 8u);
    for (size_t size : {size_t{1}, size_t{5}, image.size(), image.size() + 1}) {
        std::vector<char> buffer(size, 'x');
        size_t length = 0;
        ASSERT_EQ(ZerbinBlockImage(block, 0, buffer.data(), size, &length), ZERBIN_OK);
        EXPECT_EQ(length, image.size());
        EXPECT_EQ(std::string(buffer.data()), image.substr(0, size - 1));
    }
    EXPECT_EQ(ZerbinBlockImage(block, 0, nullptr, 4, nullptr), ZERBIN_E_INVALID_ARGUMENT);
    ZerbinBlockFree(block);
}

TEST_F(CInterfaceTest, MembersAndReferences) {
    ZerbinBlock* block = nullptr;
    ASSERT_EQ(ZerbinBlockNew("PID_LOOP", &block), ZERBIN_OK);
    const auto names = [&](int kind) {
        size_t count = 0;
        EXPECT_EQ(ZerbinBlockMemberCount(block, kind, &count), ZERBIN_OK);
        std::vector<std::string> found;
        for (size_t i = 0; i < count; ++i) {
            found.push_back(Text([&](char* b, size_t s, size_t* l) {
                return ZerbinBlockMemberName(block, kind, i, b, s, l);
            }));
        }
        return found;
    };
    EXPECT_EQ(names(ZERBIN_INPUT), (std::vector<std::string>{"Measure", "Setpoint", "Enable"}));
    EXPECT_EQ(names(ZERBIN_OUTPUT), (std::vector<std::string>{"Output", "Saturated"}));
    EXPECT_EQ(names(ZERBIN_ATTRIBUTE).front(), "Action");
    EXPECT_EQ(Text([&](char* b, size_t s, size_t* l) {
                  return ZerbinBlockMemberClass(block, ZERBIN_ATTRIBUTE, "Gain", b, s, l);
              }),
              "Float");

    EXPECT_EQ(ZerbinBlockSetReference(block, "Measure", "12"), ZERBIN_E_REFUSED);
    EXPECT_EQ(ZerbinBlockSetReference(block, "Measure", "4A01"), ZERBIN_OK);
    EXPECT_EQ(Text([&](char* b, size_t s, size_t* l) {
                  return ZerbinBlockReference(block, ZERBIN_INPUT, "Measure", b, s, l);
              }),
              "4A01");
    EXPECT_NE(Image(block).find("4A01"), std::string::npos);
    EXPECT_EQ(ZerbinBlockReference(block, ZERBIN_INPUT, "Nope", nullptr, 0, nullptr),
              ZERBIN_E_NOT_FOUND);
    EXPECT_EQ(ZerbinBlockMemberCount(block, 9, nullptr), ZERBIN_E_INVALID_ARGUMENT);
    ZerbinBlockFree(block);
}

TEST_F(CInterfaceTest, WhatCannotBeMadeOrReadIsAListedCode) {
    ZerbinBlock* block = reinterpret_cast<ZerbinBlock*>(1);
    EXPECT_EQ(ZerbinBlockNew("NO_SUCH_TYPE", &block), ZERBIN_E_NOT_FOUND);
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(ZerbinBlockNew("../PID_LOOP", &block), ZERBIN_E_NOT_FOUND);
    EXPECT_EQ(ZerbinBlockNew(nullptr, &block), ZERBIN_E_INVALID_ARGUMENT);
    EXPECT_EQ(ZerbinOpenLibrary(kData.c_str(), "/no/such/snvts.xml", ""), ZERBIN_E_FILE);
    EXPECT_NE(std::string(ZerbinLastError()).find("/no/such/snvts.xml"), std::string::npos);
    // The refused library changed nothing.
    ASSERT_EQ(ZerbinBlockNew("PID_LOOP", &block), ZERBIN_OK);
    ZerbinBlockFree(block);
    ZerbinProject* project = nullptr;
    EXPECT_EQ(ZerbinProjectLoad("/no/such/project.xml", &project), ZERBIN_E_FILE);
    EXPECT_EQ(project, nullptr);
    EXPECT_EQ(ZerbinVersion(), ZERBIN_HEADER_VERSION);
}

TEST_F(CInterfaceTest, ProjectSavedAndLoadedKeepsEveryBlock) {
    ZerbinProject* project = nullptr;
    ASSERT_EQ(ZerbinProjectLoad(ZERBIN_PLANT_PROJECT, &project), ZERBIN_OK) << ZerbinLastError();
    ASSERT_GT(ZerbinProjectCount(project), 1u);
    ZerbinBlock* first = ZerbinProjectBlock(project, 0);
    EXPECT_EQ(
        Text([&](char* b, size_t s, size_t* l) { return ZerbinBlockUserName(first, b, s, l); }),
        "Hall");
    ASSERT_EQ(ZerbinBlockSetValue(first, "HeatSetpoint", "19.5"), ZERBIN_OK) << ZerbinLastError();
    ZerbinBlock* added = nullptr;
    ASSERT_EQ(ZerbinBlockNew("PID_LOOP", &added), ZERBIN_OK);
    ASSERT_EQ(ZerbinProjectAdd(project, added), ZERBIN_OK);

    const fs::path folder = fs::path(testing::TempDir()) / "c-interface-project";
    fs::create_directories(folder);
    const std::string file = (folder / "saved.xml").string();
    ASSERT_EQ(ZerbinProjectSave(project, file.c_str()), ZERBIN_OK) << ZerbinLastError();
    ASSERT_EQ(ZerbinProjectSave(project, file.c_str()), ZERBIN_OK);
    EXPECT_TRUE(fs::exists(file + "~"));

    ZerbinProject* again = nullptr;
    ASSERT_EQ(ZerbinProjectLoad(file.c_str(), &again), ZERBIN_OK) << ZerbinLastError();
    ASSERT_EQ(ZerbinProjectCount(again), ZerbinProjectCount(project));
    for (size_t i = 0; i < ZerbinProjectCount(project); ++i) {
        EXPECT_EQ(Image(ZerbinProjectBlock(again, i)), Image(ZerbinProjectBlock(project, i)));
        EXPECT_EQ(Image(ZerbinProjectBlock(again, i), 1), Image(ZerbinProjectBlock(project, i), 1));
    }
    EXPECT_EQ(Value(ZerbinProjectBlock(again, 0), "HeatSetpoint"), "19.5");
    EXPECT_EQ(ZerbinProjectSave(project, (folder / "no" / "such" / "x.xml").c_str()),
              ZERBIN_E_FILE);
    ZerbinProjectFree(again);
    ZerbinProjectFree(project);
    fs::remove_all(folder);
}

TEST_F(CInterfaceTest, SecondThreadIsRefusedAndKeepsItsOwnError) {
    ZerbinBlock* block = nullptr;
    ASSERT_EQ(ZerbinBlockNew("PID_LOOP", &block), ZERBIN_OK);
    ZerbinBlockSetValue(block, "Gain", "abc");
    const std::string hostError = ZerbinLastError();
    ASSERT_FALSE(hostError.empty());

    int made = 0, written = 0, imaged = 0;
    std::string otherError;
    std::thread([&] {
        ZerbinBlock* other = nullptr;
        made = ZerbinBlockNew("PID_LOOP", &other);
        written = ZerbinBlockSetValue(block, "Gain", "3");
        imaged = ZerbinBlockImage(block, 0, nullptr, 0, nullptr);
        otherError = ZerbinLastError();
    }).join();
    EXPECT_EQ(made, ZERBIN_E_WRONG_THREAD);
    EXPECT_EQ(written, ZERBIN_E_WRONG_THREAD);
    EXPECT_EQ(imaged, ZERBIN_E_WRONG_THREAD);
    EXPECT_NE(otherError.find("thread"), std::string::npos);
    EXPECT_EQ(ZerbinLastError(), hostError);
    EXPECT_EQ(Value(block, "Gain"), "2.5");
    ZerbinBlockFree(block);
}

}  // namespace
