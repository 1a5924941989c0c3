// The host's process-wide store of parsed definition documents and icons. A block type is
// parsed once per process: the first block of a type adds its document, later blocks of the
// same type take it from here. Type names are file names and so compared exactly.
#pragma once

#include <map>
#include <memory>
#include <string>

#include <pugixml.hpp>

#include "platform/Picture.h"

namespace zerbin {

class DefinitionStore {
public:
    // Adds or replaces the document of a type.
    void AddDocument(std::shared_ptr<const pugi::xml_document> document,
                     const std::string& typeName);
    // Adds or replaces the icon of a type.
    void AddIcon(std::shared_ptr<const Picture> icon, const std::string& typeName);
    // nullptr when the type has none yet.
    std::shared_ptr<const pugi::xml_document> FindDocument(const std::string& typeName) const;
    std::shared_ptr<const Picture> FindIcon(const std::string& typeName) const;

private:
    std::map<std::string, std::shared_ptr<const pugi::xml_document>, std::less<>> documents_;
    std::map<std::string, std::shared_ptr<const Picture>, std::less<>> icons_;
};

// The access to the store that every block creates; all of them reach the same store.
class DefinitionCache {
public:
    DefinitionCache();
    std::shared_ptr<DefinitionStore> Store() const { return store_; }

private:
    std::shared_ptr<DefinitionStore> store_;
};

}  // namespace zerbin
