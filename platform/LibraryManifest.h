// What a block library says of itself: its manifest, "library.xml" at the library's root,
// names the library, gives its version and the least version of the SNVT dictionary its
// types need. A library without a manifest is one of no version that needs no particular
// dictionary. The dictionary gives its own version as the attribute VERSION of its root.
//
//     <LIBRARY>
//       <NAME>Plant blocks</NAME>
//       <VERSION>2.1</VERSION>
//       <DICTIONARYVERSION>1.3</DICTIONARYVERSION>
//     </LIBRARY>
//
// Names are compared in upper case, as in definitions; every key is optional.
#pragma once

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include <pugixml.hpp>

namespace zerbin {

inline constexpr const char* kLibraryManifestFile = "library.xml";

struct LibraryManifest {
    std::string name;
    std::string version;            // empty when the manifest gives none
    std::string dictionaryVersion;  // the least the library needs; empty when any will do
};

// Why a manifest was refused, as one sentence naming the file.
class LibraryManifestError : public std::runtime_error {
public:
    LibraryManifestError(const std::string& message, bool unreadable)
        : std::runtime_error(message), unreadable_(unreadable) {}
    // True when the file itself could not be read or parsed, false when what it says is wrong.
    bool Unreadable() const { return unreadable_; }

private:
    bool unreadable_;
};

// The manifest of the library folder; nullopt when it has none. Throws LibraryManifestError
// for a manifest that cannot be read, is not well-formed, has another root than "LIBRARY",
// or gives a version that is no version.
std::optional<LibraryManifest> ReadLibraryManifest(const std::filesystem::path& library);

// The library's version as its manifest gives it, read once per process and library; empty
// when there is none or the manifest is refused (the library's check tells why).
const std::string& LibraryVersion(const std::filesystem::path& library);

// The version the dictionary gives (its root's attribute VERSION); empty when it gives none.
std::string DictionaryVersion(const pugi::xml_document& dictionary);

// Whether text is a version: whole numbers joined by single dots ("3", "1.2", "2.10.1").
bool IsVersion(std::string_view text);

// Compares two versions number by number, a number missing counting as 0, so "1.2" equals
// "1.2.0" and "1.10" is after "1.9": negative when a is before b, 0 when equal, else positive.
int CompareVersions(std::string_view a, std::string_view b);

}  // namespace zerbin
