#include "platform/Picture.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string_view>

#include "base/CheckedFile.h"
#include "interfaces/Error.h"

namespace zerbin {
namespace {

// Far above any real icon; a larger file is refused unread.
constexpr std::uintmax_t kMaxIconBytes = std::uintmax_t{16} << 20;

// The three images of the component's icon, drawn as XPM: the files are the source, and
// XPM is C, so they compile in as they are.
#include "platform/resources/TESSRA-16.xpm"
#include "platform/resources/TESSRA-32-256.xpm"
#include "platform/resources/TESSRA-32.xpm"

// One palette image: pixels index into colours; transparent pixels go to the mask.
struct PaletteImage {
    int size = 0;
    int bitCount = 0;               // 4 for 16 colours, 8 for 256
    std::vector<uint32_t> colours;  // 0xRRGGBB
    std::vector<int> pixels;        // row by row from the top; -1 is transparent
};

uint32_t ParseColour(std::string_view text) {
    if (text == "None") {
        return 0;
    }
    uint32_t rgb = 0;
    if (text.size() != 7 || text[0] != '#' ||
        std::from_chars(text.data() + 1, text.data() + 7, rgb, 16).ptr != text.data() + 7) {
        throw std::invalid_argument("icon resource: colour must be #RRGGBB or None");
    }
    return rgb;
}

// Reads the subset of XPM the resources use: square, one character a pixel, "c" colours.
PaletteImage FromXpm(std::span<const char* const> xpm, int bitCount) {
    PaletteImage image;
    image.bitCount = bitCount;
    int width = 0;
    int height = 0;
    int colourCount = 0;
    int charsPerPixel = 0;
    const std::string_view header = xpm[0];
    const char* p = header.data();
    const char* end = p + header.size();
    for (int* field : {&width, &height, &colourCount, &charsPerPixel}) {
        while (p < end && *p == ' ') {
            ++p;
        }
        p = std::from_chars(p, end, *field).ptr;
    }
    if (width != height || charsPerPixel != 1 || colourCount > (1 << bitCount) ||
        xpm.size() != static_cast<std::size_t>(1 + colourCount + height)) {
        throw std::invalid_argument("icon resource: unsupported XPM layout");
    }
    image.size = width;
    std::array<int, 256> indexOf{};
    indexOf.fill(-2);
    for (int i = 0; i < colourCount; ++i) {
        const std::string_view line = xpm[static_cast<std::size_t>(1 + i)];
        const std::string_view colour = line.substr(line.rfind(' ') + 1);
        indexOf[static_cast<unsigned char>(line[0])] = colour == "None" ? -1 : i;
        image.colours.push_back(ParseColour(colour));
    }
    for (int y = 0; y < height; ++y) {
        const std::string_view row = xpm[static_cast<std::size_t>(1 + colourCount + y)];
        for (int x = 0; x < width; ++x) {
            const int index =
                indexOf[static_cast<unsigned char>(row.at(static_cast<std::size_t>(x)))];
            if (index == -2) {
                throw std::invalid_argument("icon resource: pixel of no declared colour");
            }
            image.pixels.push_back(index);
        }
    }
    return image;
}

void PutWord(std::vector<unsigned char>& out, uint32_t value) {
    out.push_back(static_cast<unsigned char>(value & 0xFF));
    out.push_back(static_cast<unsigned char>((value >> 8) & 0xFF));
}

void PutDword(std::vector<unsigned char>& out, uint32_t value) {
    PutWord(out, value & 0xFFFF);
    PutWord(out, value >> 16);
}

// The image as an icon directory entry holds it: bitmap header, palette, colour rows and the
// transparency mask, rows bottom-up and padded to 4 bytes.
std::vector<unsigned char> IconImage(const PaletteImage& image) {
    const int size = image.size;
    const int colorRow = ((size * image.bitCount + 31) / 32) * 4;
    const int maskRow = ((size + 31) / 32) * 4;
    std::vector<unsigned char> out;
    PutDword(out, 40);
    PutDword(out, static_cast<uint32_t>(size));
    PutDword(out, static_cast<uint32_t>(size * 2));  // colour rows and mask rows together
    PutWord(out, 1);
    PutWord(out, static_cast<uint32_t>(image.bitCount));
    PutDword(out, 0);
    PutDword(out, static_cast<uint32_t>((colorRow + maskRow) * size));
    for (int i = 0; i < 4; ++i) {
        PutDword(out, 0);
    }
    for (int i = 0; i < (1 << image.bitCount); ++i) {
        const uint32_t rgb = i < static_cast<int>(image.colours.size())
                                 ? image.colours[static_cast<std::size_t>(i)]
                                 : 0;
        out.push_back(static_cast<unsigned char>(rgb & 0xFF));
        out.push_back(static_cast<unsigned char>((rgb >> 8) & 0xFF));
        out.push_back(static_cast<unsigned char>((rgb >> 16) & 0xFF));
        out.push_back(0);
    }
    const auto pixel = [&](int x, int y) {
        return image.pixels[static_cast<std::size_t>(y * size + x)];
    };
    for (int y = size - 1; y >= 0; --y) {
        std::vector<unsigned char> row(static_cast<std::size_t>(colorRow), 0);
        for (int x = 0; x < size; ++x) {
            const auto index = static_cast<unsigned char>(pixel(x, y) < 0 ? 0 : pixel(x, y));
            if (image.bitCount == 8) {
                row[static_cast<std::size_t>(x)] = index;
            } else {
                row[static_cast<std::size_t>(x / 2)] |=
                    static_cast<unsigned char>(x % 2 == 0 ? index << 4 : index);
            }
        }
        out.insert(out.end(), row.begin(), row.end());
    }
    for (int y = size - 1; y >= 0; --y) {
        std::vector<unsigned char> row(static_cast<std::size_t>(maskRow), 0);
        for (int x = 0; x < size; ++x) {
            if (pixel(x, y) < 0) {
                row[static_cast<std::size_t>(x / 8)] |= static_cast<unsigned char>(0x80 >> (x % 8));
            }
        }
        out.insert(out.end(), row.begin(), row.end());
    }
    return out;
}

// An icon file of the images, in the order given.
std::vector<unsigned char> IconFile(const std::vector<PaletteImage>& images) {
    std::vector<std::vector<unsigned char>> encoded;
    for (const PaletteImage& image : images) {
        encoded.push_back(IconImage(image));
    }
    std::vector<unsigned char> out;
    PutWord(out, 0);
    PutWord(out, 1);  // an icon, not a cursor
    PutWord(out, static_cast<uint32_t>(images.size()));
    auto offset = static_cast<uint32_t>(6 + 16 * images.size());
    for (std::size_t i = 0; i < images.size(); ++i) {
        out.push_back(static_cast<unsigned char>(images[i].size));
        out.push_back(static_cast<unsigned char>(images[i].size));
        out.push_back(static_cast<unsigned char>(images[i].bitCount == 4 ? 16 : 0));
        out.push_back(0);
        PutWord(out, 1);
        PutWord(out, static_cast<uint32_t>(images[i].bitCount));
        PutDword(out, static_cast<uint32_t>(encoded[i].size()));
        PutDword(out, offset);
        offset += static_cast<uint32_t>(encoded[i].size());
    }
    for (const auto& image : encoded) {
        out.insert(out.end(), image.begin(), image.end());
    }
    return out;
}

uint32_t LittleEndian(const std::vector<unsigned char>& b, std::size_t at, int bytes) {
    uint32_t value = 0;
    for (int k = bytes - 1; k >= 0; --k) {
        value = (value << 8) | b[at + static_cast<std::size_t>(k)];
    }
    return value;
}

bool IsIconFile(const std::vector<unsigned char>& b) {
    // Reserved word 0, type 1 (icon), at least one image.
    if (b.size() < 6 || LittleEndian(b, 0, 2) != 0 || LittleEndian(b, 2, 2) != 1) {
        return false;
    }
    const std::size_t images = LittleEndian(b, 4, 2);
    if (images == 0 || b.size() < 6 + 16 * images) {
        return false;
    }
    // Every image of the directory lies wholly inside the file: a cut file is no icon.
    for (std::size_t i = 0; i < images; ++i) {
        const std::size_t entry = 6 + 16 * i;
        const uint64_t size = LittleEndian(b, entry + 8, 4);
        const uint64_t offset = LittleEndian(b, entry + 12, 4);
        if (size == 0 || offset < 6 + 16 * images || offset + size > b.size()) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::shared_ptr<const Picture> LoadIconFile(const std::filesystem::path& file) {
    std::optional<FileBytes> bytes;
    try {
        bytes.emplace(ReadRegularFile(file, kMaxIconBytes));
    } catch (const IoError& failure) {
        // No icon of its own is the usual case; one that is there but unreadable is heard of.
        if (failure.Code() == ENOENT) {
            return nullptr;
        }
        throw;
    }
    auto picture = std::make_shared<Picture>();
    picture->bytes.assign(bytes->Data(), bytes->Data() + bytes->Size());
    if (!IsIconFile(picture->bytes)) {
        return nullptr;
    }
    picture->source = file.string();
    return picture;
}

std::shared_ptr<const Picture> LoadIconResource(const std::string& name) {
    if (name != kDefaultIconResource) {
        return nullptr;
    }
    // Built at the first request and kept: every block without an icon of its own shows it.
    static const std::shared_ptr<const Picture> icon = [] {
        auto picture = std::make_shared<Picture>();
        picture->bytes = IconFile(
            {FromXpm(TESSRA_16_xpm, 4), FromXpm(TESSRA_32_xpm, 4), FromXpm(TESSRA_32_256_xpm, 8)});
        picture->source = kDefaultIconResource;
        return std::shared_ptr<const Picture>(std::move(picture));
    }();
    return icon;
}

}  // namespace zerbin
