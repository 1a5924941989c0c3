// The definition document of a block type: finding and parsing it once per process through
// the store, reading its header, and looking for a datasheet of the type.
#include <cctype>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

#include "app_object/CDBAppObject.h"
#include "base/MMain.h"
#include "base/ProcessState.h"
#include "base/SkipMode.h"
#include "base/Xml.h"
#include "base/XmlPathIndex.h"
#include "interfaces/Error.h"
#include "platform/DefinitionStore.h"
#include "platform/Events.h"
#include "platform/Files.h"
#include "platform/Messages.h"

namespace zerbin {

// What the header of a definition sets: an element that is absent, or whose text can't be
// read, leaves the block's field as it was.
struct DefinitionHeader {
    std::optional<std::string> name;
    std::optional<std::string> id;
    std::optional<std::string> description;
    std::optional<std::string> category;
    std::optional<int32_t> ddbDimension;
    std::optional<int32_t> sdbDimension;
    std::optional<int32_t> execTime;
    std::optional<int32_t> maxInstances;
    std::optional<bool> usesDeviceClock;
};

// What the first block of a stored type worked out, kept beside its document in the store: the
// one cache of a type's header and datasheet, so that every later block of the type gets both
// from the one look-up that finds the document. A type whose document is replaced or forgotten
// loses it with the document and is worked out again.
struct StoredTypeFacts : DefinitionStore::Derived {
    explicit StoredTypeFacts(DefinitionHeader read) : header(std::move(read)) {}
    DefinitionHeader header;
    // The datasheet found for each library and ID it was asked with: the ID is the block's,
    // which the header of an earlier type name may have left, and a host may point the
    // component at another library. The folders are searched once for each.
    struct Datasheet {
        std::string library;
        std::string id;
        std::optional<std::string> path;
    };
    std::vector<Datasheet> datasheets;
    // The header a new block ends with in each library, which its later blocks share.
    struct FreshHeader {
        std::string library;
        std::shared_ptr<const TypeHeader> header;
    };
    std::vector<FreshHeader> freshHeaders;
};

namespace {

// The header's number rule: the leading decimal number, rounded half to even.
int32_t HeaderNumber(pugi::xml_node element) {
    return ToInt32(LeadingNumber(xml::FirstChildText(element)));
}

// A text as a wildcard that matches only itself, so that an ID cannot widen the search.
std::string LiteralWildcard(const std::string& text) {
    std::string pattern;
    for (const char c : text) {
        if (c == '*' || c == '?' || c == '[' || c == '\\') {
            pattern += '\\';
        }
        pattern += c;
    }
    return pattern;
}

// The extension in any letter case: a datasheet named "Manual.PDF" is the same datasheet.
std::string ExtensionWildcard(const std::string& extension) {
    std::string pattern = ".";
    for (const char c : extension) {
        pattern += '[';
        pattern += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        pattern += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        pattern += ']';
    }
    return pattern;
}

// The first file that match finds for stem + ".pdf", else for stem + ".doc".
template <typename Match>
std::optional<std::string> FirstDocument(const Match& match, const std::string& stem) {
    if (auto pdf = match(stem + ExtensionWildcard("pdf"))) {
        return pdf;
    }
    return match(stem + ExtensionWildcard("doc"));
}

// The shared datasheet folder, listed once per process: every type with an ID searches it,
// and listing it again for each new type made the first block of a type cost more the larger
// the library's datasheet collection grew.
const std::vector<std::string>& SharedListing(const std::filesystem::path& shared) {
    struct Listings {
        std::map<std::string, std::vector<std::string>, std::less<>> byFolder;
    };
    auto& listings = ProcessState::Get<Listings>().byFolder;
    auto listing = listings.find(shared.native());
    if (listing == listings.end()) {
        listing = listings.emplace(shared.native(), RegularFiles(shared)).first;
    }
    return listing->second;
}

// The full path of a type's datasheet, searched in its order: the type's folder, then, when
// the type has an ID, the shared folder (from its one listing when listOnce).
std::optional<std::string> FindDatasheet(const std::filesystem::path& library,
                                         const std::string& type, const std::string& id,
                                         bool listOnce) {
    if (IsSafeTypeName(type)) {
        // Listed once for both extensions: the type's folder is read for every new type.
        static const std::vector<std::string> kOwnDocuments{"*" + ExtensionWildcard("pdf"),
                                                            "*" + ExtensionWildcard("doc")};
        const std::filesystem::path own = TypeFolder(library, type);
        if (auto file = FirstMatchInOrder(own, kOwnDocuments)) {
            return (own / *file).string();
        }
    }
    if (id.empty()) {
        return std::nullopt;
    }
    const std::filesystem::path shared = library / "DataSheets";
    const auto inShared = [&](const std::string& wildcard) {
        return listOnce ? FirstMatch(SharedListing(shared), wildcard)
                        : FirstMatch(shared, wildcard);
    };
    if (auto file = FirstDocument(inShared, "pb_" + LiteralWildcard(id) + "_*")) {
        return (shared / *file).string();
    }
    return std::nullopt;
}

DefinitionHeader ReadHeader(pugi::xml_node appObject) {
    DefinitionHeader header;
    for (pugi::xml_node child : Need(appObject).children()) {
        ServePendingEvents();
        if (xml::IsComment(child)) {
            continue;
        }
        const std::string_view key = xml::BaseNameView(child);
        // An element without text keeps its field; the next element is read all the same.
        SkipStep([&] {
            if (EqualsNoCase(key, "NAME")) {
                header.name = xml::FirstChildText(child);
            } else if (EqualsNoCase(key, "ID")) {
                header.id = xml::FirstChildText(child);
            } else if (EqualsNoCase(key, "DESCRIPTION")) {
                header.description = xml::FirstChildText(child);
            } else if (EqualsNoCase(key, "CATEGORY")) {
                header.category = xml::FirstChildText(child);
            } else if (EqualsNoCase(key, "RAMUSAGE")) {
                header.ddbDimension = HeaderNumber(child);
            } else if (EqualsNoCase(key, "BACKUPUSAGE")) {
                header.sdbDimension = HeaderNumber(child);
            } else if (EqualsNoCase(key, "EXECTIME")) {
                header.execTime = HeaderNumber(child);
            } else if (EqualsNoCase(key, "MAXINSTANCES")) {
                header.maxInstances = HeaderNumber(child);
            } else if (EqualsNoCase(key, "USEDEVICECLOCK")) {
                header.usesDeviceClock = HeaderNumber(child) != 0;
            }
        });
    }
    return header;
}

}  // namespace

std::shared_ptr<const pugi::xml_document> CDBAppObject::ObjectXML() {
    const std::shared_ptr<DefinitionStore> store = definitionCache_->Store();
    if (auto known = store->FindDocument(uniqueIdString_)) {
        // Every definition handed out is indexed, so that the members' path lookups need
        // not walk it; the index is built once and lives as long as the document.
        xml::IndexOf(known);
        return known;
    }
    std::shared_ptr<const pugi::xml_document> document = std::make_shared<pugi::xml_document>();
    SkipStep([&] {
        xml::ParseError failure;
        std::shared_ptr<pugi::xml_document> loaded;
        // A name that could reach outside the library is a type that does not exist.
        if (IsSafeTypeName(uniqueIdString_)) {
            loaded = xml::LoadFile(DefinitionFile(LibraryFolder(), uniqueIdString_), &failure,
                                   kMaxDefinitionBytes);
        } else {
            failure.reason = "The type name can't name a folder of the block library.";
        }
        if (loaded) {
            store->AddDocument(loaded, uniqueIdString_);
            xml::IndexOf(loaded);
            document = loaded;
            return;
        }
        // Not stored, so that every later read tries again and tells the user again.
        ShowMessage("Error: The object " + uniqueIdString_ +
                    " is not available; Please verify its name.");
        throw Error(failure.srcText + "\r" + failure.reason, ErrorKind::DefinitionNotLoaded,
                    ComponentBaseName());
    });
    return document;
}

void CDBAppObject::LoadDefinitionHeader() {
    const std::shared_ptr<DefinitionStore> store = definitionCache_->Store();
    if (const DefinitionStore::Entry* entry = store->FindEntry(uniqueIdString_)) {
        // Compared by type rather than cast: only this file keeps facts of this kind, and
        // the check is asked once per block.
        if (DefinitionStore::Derived* derived = entry->derived.get();
            derived && typeid(*derived) == typeid(StoredTypeFacts)) {
            auto& facts = static_cast<StoredTypeFacts&>(*derived);
            // What the walk below would find again: the same document, already indexed, and
            // its header as the first block read it. A block that starts from a new block's
            // header ends where every such block of the type in the same library ends: it
            // shares that block's header.
            const bool fresh = header_.IsDefault();
            const std::string& library = LibraryFolder().native();
            if (fresh) {
                for (const StoredTypeFacts::FreshHeader& known : facts.freshHeaders) {
                    if (known.library == library) {
                        header_.Share(known.header);
                        return;
                    }
                }
            }
            ApplyHeader(facts.header);
            if (SkipStep([&] { SearchStoredDatasheet(facts); }) && fresh) {
                facts.freshHeaders.push_back({library, header_.Shared()});
            }
            return;
        }
    }
    // Held for the walk: a document that failed to load lives nowhere else.
    std::shared_ptr<const pugi::xml_document> document;
    pugi::xml_node appObject;
    bool searched = false;
    SkipStep([&] {
        document = ObjectXML();
        appObject = Need(xml::FindFirstIndexed(Need(document).root(), "AppObject"));
    });
    SkipStep([&] {
        const bool stored = store->FindDocument(uniqueIdString_) == document;
        if (!stored) {
            ApplyHeader(ReadHeader(appObject));
            return;
        }
        // Made before the fields are written: running out of memory leaves them as they were.
        auto facts = std::make_shared<StoredTypeFacts>(ReadHeader(appObject));
        ApplyHeader(facts->header);
        store->SetDerived(uniqueIdString_, document.get(), facts);
        SkipStep([&] { SearchStoredDatasheet(*facts); });
        searched = true;
    });
    if (!searched) {
        SkipStep([&] {
            TakeDatasheet(FindDatasheet(LibraryFolder(), uniqueIdString_, header_->id, false));
        });
    }
}

void CDBAppObject::ApplyHeader(const DefinitionHeader& header) {
    const auto set = [](auto& field, const auto& value) {
        if (value) {
            field = *value;
        }
    };
    TypeHeader next = *header_;
    set(next.name, header.name);
    set(next.id, header.id);
    set(next.description, header.description);
    set(next.category, header.category);
    set(next.ddbDimension, header.ddbDimension);
    set(next.sdbDimension, header.sdbDimension);
    set(next.execTime, header.execTime);
    set(next.maxInstances, header.maxInstances);
    set(next.usesDeviceClock, header.usesDeviceClock);
    header_.Set(std::move(next));
}

void CDBAppObject::SearchStoredDatasheet(StoredTypeFacts& facts) {
    const std::filesystem::path& library = LibraryFolder();
    for (const StoredTypeFacts::Datasheet& known : facts.datasheets) {
        if (known.id == header_->id && known.library == library.native()) {
            TakeDatasheet(known.path);
            return;
        }
    }
    StoredTypeFacts::Datasheet found{library.native(), header_->id,
                                     FindDatasheet(library, uniqueIdString_, header_->id, true)};
    facts.datasheets.push_back(std::move(found));
    TakeDatasheet(facts.datasheets.back().path);
}

void CDBAppObject::TakeDatasheet(const std::optional<std::string>& path) {
    if (path) {
        TypeHeader& header = header_.Write();
        header.datasheetAvailable = true;
        header.datasheetPath = *path;
    } else if (header_->id.empty()) {
        header_.Assign(&TypeHeader::datasheetAvailable, false);
    } else {
        // Deliberately leaves the flag alone: a datasheet found by an earlier type name stays
        // announced, although its path is gone.
        header_.Assign(&TypeHeader::datasheetPath, std::string());
    }
}

}  // namespace zerbin
