// The host's process-wide store of parsed definition documents and icons. A block type is
// parsed once per process: the first block of a type adds its document, later blocks of the
// same type take it from here. Type names are file names and so compared exactly.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>

#include <pugixml.hpp>

#include "platform/Picture.h"

namespace zerbin {

class DefinitionStore {
public:
    // What a layer above works out from a stored document and the type's name alone, kept
    // beside the document so that every block of the type finds both in one look-up. It goes
    // with the document: a type whose document is replaced has none until it is worked out
    // again.
    struct Derived {
        virtual ~Derived() = default;
    };

    struct Entry {
        std::shared_ptr<const pugi::xml_document> document;
        std::shared_ptr<Derived> derived;
    };

    // Adds or replaces the document of a type.
    void AddDocument(std::shared_ptr<const pugi::xml_document> document,
                     const std::string& typeName);
    // Forgets every document, icon and what was derived from them, as when the host switches to
    // another library; blocks alive keep what they took.
    void Clear();
    // Adds or replaces the icon of a type.
    void AddIcon(std::shared_ptr<const Picture> icon, const std::string& typeName);
    // nullptr when the type has none yet.
    std::shared_ptr<const pugi::xml_document> FindDocument(const std::string& typeName) const;
    std::shared_ptr<const Picture> FindIcon(const std::string& typeName) const;

    // The type's document and what was derived from it; nullptr when the type has no document.
    // Valid until the next AddDocument.
    const Entry* FindEntry(const std::string& typeName) const;
    // Keeps derived beside the type's document, when that document is still document: what
    // was worked out from a document since replaced must not pass for the new one's.
    void SetDerived(const std::string& typeName, const pugi::xml_document* document,
                    std::shared_ptr<Derived> derived);

private:
    // Hashed: every block asks several times, and a hash is cheaper than walking a tree of
    // names that share long prefixes.
    std::unordered_map<std::string, Entry> documents_;
    std::unordered_map<std::string, std::shared_ptr<const Picture>> icons_;
};

// An access to the process's store; every access reaches the same store.
class DefinitionCache {
public:
    DefinitionCache();
    std::shared_ptr<DefinitionStore> Store() const { return store_; }
    // The same store, for a caller that uses it only for the moment: every block asks, and
    // holding it costs more than the look-up.
    static DefinitionStore& Shared();
    // One access for all the blocks of the process: it reaches the same store as any other,
    // and a block that made its own paid an allocation for it.
    static std::shared_ptr<DefinitionCache> ForBlocks();

private:
    std::shared_ptr<DefinitionStore> store_;
};

}  // namespace zerbin
