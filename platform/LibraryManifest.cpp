#include "platform/LibraryManifest.h"

#include <map>
#include <system_error>

#include "base/MMain.h"
#include "base/ProcessState.h"
#include "base/Xml.h"

namespace zerbin {
namespace {

std::string LowerFirst(std::string text) {
    if (!text.empty() && text[0] >= 'A' && text[0] <= 'Z') {
        text[0] = static_cast<char>(text[0] - 'A' + 'a');
    }
    return text;
}

pugi::xml_node ChildNoCase(pugi::xml_node parent, std::string_view name) {
    for (pugi::xml_node child : parent.children()) {
        if (child.type() == pugi::node_element && EqualsNoCase(xml::BaseNameView(child), name)) {
            return child;
        }
    }
    return {};
}

// The next number of a version from at on, and at moved past it and its dot.
unsigned long long NextNumber(std::string_view version, std::size_t& at) {
    unsigned long long number = 0;
    while (at < version.size() && version[at] != '.') {
        // A number too long to hold compares as the largest: versions are short in practice.
        number = number > 1'000'000'000'000ULL
                     ? number
                     : number * 10 + static_cast<unsigned>(version[at] - '0');
        ++at;
    }
    ++at;
    return number;
}

}  // namespace

std::optional<LibraryManifest> ReadLibraryManifest(const std::filesystem::path& library) {
    const std::filesystem::path file = library / kLibraryManifestFile;
    std::error_code error;
    if (!std::filesystem::exists(file, error)) {
        return std::nullopt;
    }
    const std::string where = "library manifest '" + file.string() + "'";
    xml::ParseError failure;
    const std::shared_ptr<pugi::xml_document> document = xml::LoadFile(file, &failure);
    if (!document) {
        throw LibraryManifestError("cannot read " + where + ": " + LowerFirst(failure.reason),
                                   true);
    }
    const pugi::xml_node root = document->document_element();
    if (!EqualsNoCase(xml::BaseNameView(root), "LIBRARY")) {
        throw LibraryManifestError(
            where + " has the root '" + std::string(root.name()) + "', expected 'LIBRARY'", false);
    }
    LibraryManifest manifest;
    const std::pair<const char*, std::string*> keys[] = {
        {"NAME", &manifest.name},
        {"VERSION", &manifest.version},
        {"DICTIONARYVERSION", &manifest.dictionaryVersion}};
    for (const auto& [key, field] : keys) {
        *field = xml::FirstChildTextView(ChildNoCase(root, key)).value_or(std::string_view());
        if (field != &manifest.name && !field->empty() && !IsVersion(*field)) {
            throw LibraryManifestError(where + ": " + key + " '" + *field +
                                           "' is no version (whole numbers joined by dots)",
                                       false);
        }
    }
    return manifest;
}

const std::string& LibraryVersion(const std::filesystem::path& library) {
    // Read once: every block saved or restored asks, and a library does not change its
    // version under a running host.
    struct Versions {
        std::map<std::filesystem::path, std::string> known;
    };
    auto& versions = ProcessState::Get<Versions>().known;
    const auto found = versions.find(library);
    if (found != versions.end()) {
        return found->second;
    }
    std::string version;
    try {
        if (const std::optional<LibraryManifest> manifest = ReadLibraryManifest(library)) {
            version = manifest->version;
        }
    } catch (const LibraryManifestError&) {
        // A refused manifest gives no version here; checking the library says why.
    }
    return versions.emplace(library, std::move(version)).first->second;
}

std::string DictionaryVersion(const pugi::xml_document& dictionary) {
    for (pugi::xml_attribute attribute : dictionary.document_element().attributes()) {
        if (EqualsNoCase(xml::BaseNameView(attribute), "VERSION")) {
            return attribute.value();
        }
    }
    return {};
}

bool IsVersion(std::string_view text) {
    bool digit = false;
    for (const char c : text) {
        if (c >= '0' && c <= '9') {
            digit = true;
        } else if (c == '.' && digit) {
            digit = false;
        } else {
            return false;
        }
    }
    return digit;
}

int CompareVersions(std::string_view a, std::string_view b) {
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < a.size() || j < b.size()) {
        const unsigned long long x = i < a.size() ? NextNumber(a, i) : 0;
        const unsigned long long y = j < b.size() ? NextNumber(b, j) : 0;
        if (x != y) {
            return x < y ? -1 : 1;
        }
    }
    return 0;
}

}  // namespace zerbin
