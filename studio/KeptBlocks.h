// The blocks of a project whose type the library lacks. They are kept as they were read, so
// that a save writes them back unchanged, and the wires between them and the shown blocks
// with them. The canvas draws each as a stand-in with the terminals its wires name: all that
// is known of a type that is not there.
#pragma once

#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include <QPointF>

#include <pugixml.hpp>

#include "studio/Wire.h"

namespace zerbin::studio {

// What the canvas draws of a kept block.
struct MissingBlock {
    std::string key;
    std::string type;
    std::string name;
    QPointF pos;
    // Named by its wires, in the order the file gives them.
    std::vector<std::string> inputs;
    std::vector<std::string> outputs;
};

class KeptBlocks {
public:
    // Keeps a copy of the block's element, its wires to it included.
    void Keep(pugi::xml_node element);
    // Keeps a wire from a kept block into a shown one; it is written with its target.
    void KeepWire(const Wire& wire);
    void Clear();

    int Count() const;
    bool HasKey(const std::string& key) const { return keys_.count(key) != 0; }
    bool HasName(const std::string& name) const { return names_.count(name) != 0; }

    // The kept wires into a shown block, and what becomes of them when it goes.
    const std::vector<Wire>& WiresTo(const std::string& target) const;
    void DropWiresTo(const std::string& target);
    // Every wire at a kept block, into it or out of it.
    std::vector<Wire> Wires() const;
    std::vector<MissingBlock> Blocks() const;

    // Appends a copy of each kept element to the project's root.
    void AppendTo(pugi::xml_node root) const;

private:
    pugi::xml_document elements_;
    std::unordered_map<std::string, std::vector<Wire>> wiresTo_;
    std::set<std::string> keys_;
    std::set<std::string> names_;
};

}  // namespace zerbin::studio
