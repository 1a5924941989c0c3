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

#include "app_object/CDBAppObject.h"
#include "base/MMain.h"
#include "base/SkipMode.h"
#include "interfaces/Error.h"
#include "platform/DefinitionStore.h"
#include "platform/Files.h"
#include "platform/LibraryHold.h"
#include "platform/Messages.h"
#include "platform/Picture.h"
#include "platform/Shell.h"

namespace zerbin {
namespace {

struct ColorEntry {
    const char* word;
    int32_t number;  // red in the lowest byte, then green, then blue
};

constexpr std::array<ColorEntry, 6> kColors{{
    {"RED", 0x0000FF},
    {"GREEN", 0x00FF00},
    {"BLUE", 0xFF0000},
    {"YELLOW", 0x00FFFF},
    {"CYAN", 0xFFFF00},
    {"MAGENTA", 0xFF00FF},
}};

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
            throw Error("'" + digits + "' is not a window number", ErrorKind::NotANumber);
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
        if (EqualsNoCase(seldom_->colorWord, entry.word)) {
            return entry.number;
        }
    }
    return 0;
}

void CDBAppObject::IAppObject_Color(int32_t Color) {
    std::string word;
    for (const ColorEntry& entry : kColors) {
        if (Color == entry.number) {
            word = entry.word;
        }
    }
    IAppObject_SetColor(word);
}

void CDBAppObject::IAppObject_SetColor(const std::string& Color) {
    seldom_.Assign(&Seldom::colorWord, Color);
}

// ---- Icon -----------------------------------------------------------------------------------

std::shared_ptr<const Picture> CDBAppObject::IAppObject_Icon() {
    const std::shared_ptr<DefinitionStore> store = definitionCache_->Store();
    std::shared_ptr<const Picture> picture;
    SkipStep([&] { picture = store->FindIcon(uniqueIdString_); });
    if (picture) {
        return HeldByHost(std::move(picture));
    }
    SkipStep([&] {
        // A name that could leave the library has no file of its own: it gets the default.
        if (IsSafeTypeName(uniqueIdString_)) {
            picture = LoadIconFile(LibraryFolder() / uniqueIdString_ / (uniqueIdString_ + ".ico"));
        }
    });
    if (!picture) {
        SkipStep([&] { picture = LoadIconResource(kDefaultIconResource); });
    }
    SkipStep([&] { store->AddIcon(picture, uniqueIdString_); });
    return HeldByHost(std::move(picture));
}

// ---- Datasheet ------------------------------------------------------------------------------

void CDBAppObject::IAppObject_ViewDatasheet(const WindowHandle& Handle) {
    if (!header_->datasheetAvailable) {
        ShowMessage("DataSheet not available");
        return;
    }
    constexpr int32_t kShowMaximized = 3;
    // A handle that holds no number drops the call, and the result 0 tells the user.
    int32_t result = 0;
    SkipStep([&] {
        result = OpenDocument(WindowNumber(Handle), "open", header_->datasheetPath, "0",
                              header_->datasheetPath, kShowMaximized);
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
