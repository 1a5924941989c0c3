#include "platform/Picture.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "interfaces/Error.h"
#include "tests/support/TestSupport.h"

namespace zerbin {
namespace {

uint32_t At(const std::vector<unsigned char>& b, std::size_t at, int bytes) {
    uint32_t value = 0;
    for (int k = bytes - 1; k >= 0; --k) {
        value = (value << 8) | b.at(at + static_cast<std::size_t>(k));
    }
    return value;
}

// The bytes a host's icon reader takes apart: the directory, each image's bitmap header, and
// the pixels and masks (by their digest, as the drawings are the resources' own).
TEST(Picture, TheComponentsIconIsAnIconFileOfThreeImages) {
    const auto icon = LoadIconResource(kDefaultIconResource);
    ASSERT_NE(icon, nullptr);
    EXPECT_EQ(icon->source, kDefaultIconResource);
    EXPECT_EQ(LoadIconResource("OTHER"), nullptr);
    const std::vector<unsigned char>& b = icon->bytes;
    ASSERT_EQ(b.size(), 3310U);
    EXPECT_EQ(At(b, 0, 2), 0U);
    EXPECT_EQ(At(b, 2, 2), 1U);
    EXPECT_EQ(At(b, 4, 2), 3U);
    const struct {
        uint32_t size, colours, bitCount, bytes, offset, pixelBytes;
    } images[] = {
        {16, 16, 4, 296, 54, 192}, {32, 16, 4, 744, 350, 640}, {32, 0, 8, 2216, 1094, 1152}};
    for (std::size_t i = 0; i < 3; ++i) {
        SCOPED_TRACE(i);
        const std::size_t entry = 6 + 16 * i;
        EXPECT_EQ(At(b, entry, 1), images[i].size);
        EXPECT_EQ(At(b, entry + 1, 1), images[i].size);
        EXPECT_EQ(At(b, entry + 2, 1), images[i].colours);
        EXPECT_EQ(At(b, entry + 3, 1), 0U);
        EXPECT_EQ(At(b, entry + 4, 2), 1U);
        EXPECT_EQ(At(b, entry + 6, 2), images[i].bitCount);
        EXPECT_EQ(At(b, entry + 8, 4), images[i].bytes);
        EXPECT_EQ(At(b, entry + 12, 4), images[i].offset);
        const std::size_t header = images[i].offset;
        EXPECT_EQ(At(b, header, 4), 40U);
        EXPECT_EQ(At(b, header + 4, 4), images[i].size);
        EXPECT_EQ(At(b, header + 8, 4), 2 * images[i].size);  // colour and mask rows
        EXPECT_EQ(At(b, header + 12, 2), 1U);
        EXPECT_EQ(At(b, header + 14, 2), images[i].bitCount);
        EXPECT_EQ(At(b, header + 16, 4), 0U);
        EXPECT_EQ(At(b, header + 20, 4), images[i].pixelBytes);
    }
    uint64_t digest = 14695981039346656037ULL;  // FNV-1a over the whole file
    for (const unsigned char byte : b) {
        digest = (digest ^ byte) * 1099511628211ULL;
    }
    EXPECT_EQ(digest, 1441485313158648730ULL);
}

TEST(Picture, AFileIsAnIconOnlyWhenEveryImageLiesInsideIt) {
    // The directory of one image of `size` bytes at `offset`, then `tail` bytes.
    const auto file = [](uint16_t reserved, uint16_t type, uint16_t count, uint32_t size,
                         uint32_t offset, std::size_t tail) {
        std::string b;
        for (const uint32_t word : {uint32_t{reserved}, uint32_t{type}, uint32_t{count}}) {
            b += static_cast<char>(word & 0xFF);
            b += static_cast<char>(word >> 8);
        }
        b += std::string("\x10\x10\x00\x00\x01\x00\x04\x00", 8);
        for (const uint32_t dword : {size, offset}) {
            for (int k = 0; k < 4; ++k) {
                b += static_cast<char>((dword >> (8 * k)) & 0xFF);
            }
        }
        return b + std::string(tail, 'x');
    };
    const struct {
        const char* label;
        std::string bytes;
        bool icon;
    } rows[] = {
        {"one image of one byte", file(0, 1, 1, 1, 22, 1), true},
        {"image ends at the end", file(0, 1, 1, 4, 22, 4), true},
        {"image past the end", file(0, 1, 1, 5, 22, 4), false},
        {"image inside the directory", file(0, 1, 1, 1, 21, 1), false},
        {"image of no bytes", file(0, 1, 1, 0, 22, 1), false},
        {"a cursor", file(0, 2, 1, 1, 22, 1), false},
        {"reserved word set", file(1, 1, 1, 1, 22, 1), false},
        {"no images", file(0, 1, 0, 1, 22, 1), false},
        {"directory cut short", file(0, 1, 2, 1, 22, 1), false},
        {"six bytes", std::string("\0\0\1\0\1\0", 6), false},
        {"empty", "", false},
    };
    testing::TempFolder folder;
    for (const auto& row : rows) {
        const auto path = folder.Write(std::string(row.label) + ".ico", row.bytes);
        const auto picture = LoadIconFile(path);
        EXPECT_EQ(picture != nullptr, row.icon) << row.label;
        if (picture != nullptr) {
            EXPECT_EQ(picture->bytes,
                      std::vector<unsigned char>(row.bytes.begin(), row.bytes.end()));
            EXPECT_EQ(picture->source, path.string());
        }
    }
    EXPECT_EQ(LoadIconFile(folder.Path() / "missing.ico"), nullptr);
    EXPECT_THROW(LoadIconFile(folder.Path()), IoError) << "a folder is there but unreadable";
}

}  // namespace
}  // namespace zerbin
