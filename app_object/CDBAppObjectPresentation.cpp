// How the host shows a block: its colour, its icon on the canvas and the datasheet of its
// type.
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <variant>
#include <vector>

#include "app_object/CDBAppObject.h"
#include "base/CheckedFile.h"
#include "base/MMain.h"
#include "base/SkipMode.h"
#include "interfaces/Error.h"
#include "platform/DefinitionStore.h"
#include "platform/Files.h"
#include "platform/Messages.h"
#include "platform/Picture.h"
#include "platform/Shell.h"

namespace zerbin {
namespace {

struct ColorEntry {
    const char* word;
    int32_t number;  // red in the lowest byte, then green, then blue
};

// Far above any real icon; a larger file is refused unread.
constexpr std::uintmax_t kMaxIconBytes = std::uintmax_t{16} << 20;

constexpr std::array<ColorEntry, 6> kColors{{
    {"RED", 0x0000FF},
    {"GREEN", 0x00FF00},
    {"BLUE", 0xFF0000},
    {"YELLOW", 0x00FFFF},
    {"CYAN", 0xFFFF00},
    {"MAGENTA", 0xFF00FF},
}};

// ---- The built-in icon ------------------------------------------------------------------------

constexpr const char* kDefaultIconName = "TESSRA";

void PutWord(std::vector<unsigned char>& out, uint32_t value) {
    out.push_back(static_cast<unsigned char>(value & 0xFF));
    out.push_back(static_cast<unsigned char>((value >> 8) & 0xFF));
}

void PutDword(std::vector<unsigned char>& out, uint32_t value) {
    PutWord(out, value & 0xFFFF);
    PutWord(out, value >> 16);
}

// Colour indexes of the glyph in the standard 16-colour palette.
constexpr int kTransparent = -1;
constexpr int kBlack = 0;
constexpr int kNavy = 4;
constexpr int kWhite = 15;

// A function block: a framed box with two inputs on the left and one output on the right.
int GlyphPixel(int x, int y, int size) {
    const int margin = size / 8;
    const int left = margin + size / 8;
    const int right = size - 1 - margin - size / 8;
    const int top = margin;
    const int bottom = size - 1 - margin;
    const bool inBox = x >= left && x <= right && y >= top && y <= bottom;
    if (inBox) {
        const bool frame = x - left < size / 16 + 1 || right - x < size / 16 + 1 ||
                           y - top < size / 16 + 1 || bottom - y < size / 16 + 1;
        return frame ? kNavy : kWhite;
    }
    const bool inputStub = x < left && x >= margin / 2 && (y == size * 3 / 8 || y == size * 5 / 8);
    const bool outputStub = x > right && x < size - margin / 2 && y == size / 2;
    return inputStub || outputStub ? kBlack : kTransparent;
}

// The palette that the 16-colour images use and the 256-colour image starts with, as RGB.
constexpr std::array<uint32_t, 16> kPalette16{
    0x000000, 0x800000, 0x008000, 0x808000, 0x000080, 0x800080, 0x008080, 0xC0C0C0,
    0x808080, 0xFF0000, 0x00FF00, 0xFFFF00, 0x0000FF, 0xFF00FF, 0x00FFFF, 0xFFFFFF};

// One icon image: the bitmap header, the palette, the colour rows and the transparency mask,
// rows bottom-up and padded to 4 bytes.
std::vector<unsigned char> IconImage(int size, int bitCount) {
    const int colors = 1 << bitCount;
    const int colorRow = ((size * bitCount + 31) / 32) * 4;
    const int maskRow = ((size + 31) / 32) * 4;
    std::vector<unsigned char> image;
    PutDword(image, 40);
    PutDword(image, static_cast<uint32_t>(size));
    PutDword(image, static_cast<uint32_t>(size * 2));  // colour rows and mask rows together
    PutWord(image, 1);
    PutWord(image, static_cast<uint32_t>(bitCount));
    PutDword(image, 0);
    PutDword(image, static_cast<uint32_t>((colorRow + maskRow) * size));
    for (int i = 0; i < 4; ++i) {
        PutDword(image, 0);
    }
    for (int i = 0; i < colors; ++i) {
        const uint32_t rgb = i < 16 ? kPalette16[static_cast<std::size_t>(i)] : 0;
        image.push_back(static_cast<unsigned char>(rgb & 0xFF));
        image.push_back(static_cast<unsigned char>((rgb >> 8) & 0xFF));
        image.push_back(static_cast<unsigned char>((rgb >> 16) & 0xFF));
        image.push_back(0);
    }
    for (int y = size - 1; y >= 0; --y) {
        std::vector<unsigned char> row(static_cast<std::size_t>(colorRow), 0);
        for (int x = 0; x < size; ++x) {
            const int pixel = GlyphPixel(x, y, size);
            const auto index = static_cast<unsigned char>(pixel == kTransparent ? 0 : pixel);
            if (bitCount == 8) {
                row[static_cast<std::size_t>(x)] = index;
            } else {
                row[static_cast<std::size_t>(x / 2)] |=
                    static_cast<unsigned char>(x % 2 == 0 ? index << 4 : index);
            }
        }
        image.insert(image.end(), row.begin(), row.end());
    }
    for (int y = size - 1; y >= 0; --y) {
        std::vector<unsigned char> row(static_cast<std::size_t>(maskRow), 0);
        for (int x = 0; x < size; ++x) {
            if (GlyphPixel(x, y, size) == kTransparent) {
                row[static_cast<std::size_t>(x / 8)] |= static_cast<unsigned char>(0x80 >> (x % 8));
            }
        }
        image.insert(image.end(), row.begin(), row.end());
    }
    return image;
}

// The component's own icon file: 16 by 16 and 32 by 32 in 16 colours, 32 by 32 in 256.
std::shared_ptr<const Picture> DefaultIcon() {
    static const std::shared_ptr<const Picture> icon = [] {
        struct Format {
            int size;
            int bitCount;
        };
        constexpr std::array<Format, 3> formats{{{16, 4}, {32, 4}, {32, 8}}};
        std::vector<std::vector<unsigned char>> images;
        for (const Format& format : formats) {
            images.push_back(IconImage(format.size, format.bitCount));
        }
        auto picture = std::make_shared<Picture>();
        std::vector<unsigned char>& out = picture->bytes;
        PutWord(out, 0);
        PutWord(out, 1);  // an icon, not a cursor
        PutWord(out, static_cast<uint32_t>(formats.size()));
        uint32_t offset = static_cast<uint32_t>(6 + 16 * formats.size());
        for (std::size_t i = 0; i < formats.size(); ++i) {
            out.push_back(static_cast<unsigned char>(formats[i].size));
            out.push_back(static_cast<unsigned char>(formats[i].size));
            out.push_back(static_cast<unsigned char>(formats[i].bitCount == 4 ? 16 : 0));
            out.push_back(0);
            PutWord(out, 1);
            PutWord(out, static_cast<uint32_t>(formats[i].bitCount));
            PutDword(out, static_cast<uint32_t>(images[i].size()));
            PutDword(out, offset);
            offset += static_cast<uint32_t>(images[i].size());
        }
        for (const auto& image : images) {
            out.insert(out.end(), image.begin(), image.end());
        }
        picture->source = kDefaultIconName;
        return std::shared_ptr<const Picture>(std::move(picture));
    }();
    return icon;
}

// The type's own ".ico" file, or nullptr when there is none or it is not an icon file. A file
// that is there but cannot be read throws IoError: the user hears of it.
std::shared_ptr<const Picture> IconFileOfType(const std::string& typeName) {
    if (!IsSafeTypeName(typeName)) {
        return nullptr;
    }
    const std::filesystem::path file = LibraryFolder() / typeName / (typeName + ".ico");
    std::optional<FileBytes> bytes;
    try {
        bytes.emplace(ReadRegularFile(file, kMaxIconBytes));
    } catch (const IoError& failure) {
        if (failure.Code() == ENOENT) {
            return nullptr;
        }
        throw;
    }
    auto picture = std::make_shared<Picture>();
    picture->bytes.assign(bytes->Data(), bytes->Data() + bytes->Size());
    const auto& b = picture->bytes;
    // Reserved word 0, type 1 (icon), at least one image.
    if (b.size() < 6 || b[0] != 0 || b[1] != 0 || b[2] != 1 || b[3] != 0 ||
        (b[4] == 0 && b[5] == 0)) {
        return nullptr;
    }
    picture->source = file.string();
    return picture;
}

// The host's window number as a 32-bit number; throws when the handle holds none.
int32_t WindowNumber(const WindowHandle& handle) {
    int64_t number = 0;
    if (const auto* value = std::get_if<int64_t>(&handle)) {
        number = *value;
    } else if (const auto* text = std::get_if<std::string>(&handle)) {
        const std::string digits = Trim(*text);
        const char* first = digits.data() + (digits.starts_with('+') ? 1 : 0);
        const char* last = digits.data() + digits.size();
        const auto [end, ec] = std::from_chars(first, last, number);
        if (ec != std::errc{} || end != last || first == last) {
            throw Error("Type mismatch", kErrTypeMismatch);
        }
    }
    if (number < std::numeric_limits<int32_t>::min() ||
        number > std::numeric_limits<int32_t>::max()) {
        throw OverflowError();
    }
    return static_cast<int32_t>(number);
}

}  // namespace

// ---- Colour ---------------------------------------------------------------------------------

int32_t CDBAppObject::IAppObject_Color() {
    for (const ColorEntry& entry : kColors) {
        if (EqualsNoCase(colorWord_, entry.word)) {
            return entry.number;
        }
    }
    return 0;
}

void CDBAppObject::IAppObject_Color(int32_t Color) {
    colorWord_.clear();
    for (const ColorEntry& entry : kColors) {
        if (Color == entry.number) {
            colorWord_ = entry.word;
        }
    }
}

void CDBAppObject::IAppObject_SetColor(const std::string& Color) {
    colorWord_ = Color;
}

// ---- Icon -----------------------------------------------------------------------------------

std::shared_ptr<const Picture> CDBAppObject::IAppObject_Icon() {
    const std::shared_ptr<DefinitionStore> store = definitionCache_->Store();
    std::shared_ptr<const Picture> picture;
    SkipStep([&] { picture = store->FindIcon(uniqueIdString_); });
    if (picture) {
        return picture;
    }
    SkipStep([&] { picture = IconFileOfType(uniqueIdString_); });
    if (!picture) {
        SkipStep([&] { picture = DefaultIcon(); });
    }
    SkipStep([&] { store->AddIcon(picture, uniqueIdString_); });
    return picture;
}

// ---- Datasheet ------------------------------------------------------------------------------

void CDBAppObject::IAppObject_ViewDatasheet(const WindowHandle& Handle) {
    if (!datasheetAvailable_) {
        ShowMessage("DataSheet not available");
        return;
    }
    constexpr int32_t kShowMaximized = 3;
    // A handle that holds no number drops the call, and the result 0 tells the user.
    int32_t result = 0;
    SkipStep([&] {
        result = OpenDocument(WindowNumber(Handle), "open", datasheetPath_, "0", datasheetPath_,
                              kShowMaximized);
    });
    if (result == kShellNoAssociation) {
        ShowMessage("Viewer not Available. Please install the viewer to see the documentation");
    } else if (result == kShellFileNotFound) {
        ShowMessage("DataSheet not available");
    } else if (result < 31) {
        ShowMessage("Visualization not allowed");
    }
}

}  // namespace zerbin
