// What a saved block records of its type, so that a later load can tell that the type changed
// under it: a stamp "HHHHHHHH@VERSION", a short hash of the type's definition and the version
// of the library it came from ("HHHHHHHH" alone for a library without a version). A host that
// writes projects puts it on each block element as the XML attribute "TypeStamp", beside its
// own (Key, ExportIndex); the block's load reads it, and readers that do not know it pass it
// by, as they pass by every attribute of the block element.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include "interfaces/ITypeChange.h"

namespace zerbin {

// Eight hexadecimal digits over the definition's elements, attributes and texts, in order;
// comments, processing instructions and the layout of the file do not count.
std::string DefinitionHash(const pugi::xml_document& definition);

// The stamp of type as definition (from the library's folder) makes it now; worked out once
// per definition document and library version.
std::string CurrentTypeStamp(const std::string& type,
                             const std::shared_ptr<const pugi::xml_document>& definition);

// What a block's last project load found of a type that changed since the block was saved:
// the block holds every value that still fits, by attribute name; the others are kept as
// entries its type does not define and saved back unchanged until the block is updated to
// the library's type.
struct TypeChange {
    // As the project recorded it; empty for a block saved without one, whose type is known
    // to have changed only because the project names what the type no longer has.
    std::string savedStamp;
    std::string currentStamp;

    struct Value {
        std::string name;    // the attribute's name as the project writes it
        std::string value;   // the saved text
        std::string reason;  // why it was not taken: gone from the type, or the value's fault
    };
    // The values kept instead of taken, in the order of the project.
    std::vector<Value> unmapped;
    // The type's attributes the project gave no value: they hold their defaults. Known only
    // where the stamps differ.
    std::vector<std::string> added;
    // The project's displayable outputs that the type no longer has.
    std::vector<std::string> outputsGone;
};

}  // namespace zerbin
