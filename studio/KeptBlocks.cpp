#include "studio/KeptBlocks.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <map>

namespace zerbin::studio {
namespace {

// A place as the block wrote it; a place it did not write, or not as a number, is the origin.
qreal Coordinate(pugi::xml_node element, const char* name) {
    const char* text = element.child_value(name);
    double value = 0;
    const auto [end, error] = std::from_chars(text, text + std::strlen(text), value);
    return error == std::errc{} && *end == '\0' ? value : 0.0;
}

void AddName(std::vector<std::string>& names, const std::string& name) {
    if (std::find(names.begin(), names.end(), name) == names.end()) {
        names.push_back(name);
    }
}

}  // namespace

void KeptBlocks::Keep(pugi::xml_node element) {
    elements_.append_copy(element);
    if (const pugi::xml_attribute key = element.attribute("Key")) {
        keys_.insert(key.as_string());
    }
    names_.insert(element.child_value("UserName"));
}

void KeptBlocks::KeepWire(const Wire& wire) {
    wiresTo_[wire.target].push_back(wire);
}

void KeptBlocks::Clear() {
    elements_.reset();
    wiresTo_.clear();
    keys_.clear();
    names_.clear();
}

int KeptBlocks::Count() const {
    return static_cast<int>(
        std::distance(elements_.children().begin(), elements_.children().end()));
}

const std::vector<Wire>& KeptBlocks::WiresTo(const std::string& target) const {
    static const std::vector<Wire> none;
    const auto found = wiresTo_.find(target);
    return found == wiresTo_.end() ? none : found->second;
}

void KeptBlocks::DropWiresTo(const std::string& target) {
    wiresTo_.erase(target);
}

std::vector<Wire> KeptBlocks::Wires() const {
    std::vector<Wire> wires;
    for (const auto& [target, into] : wiresTo_) {
        wires.insert(wires.end(), into.begin(), into.end());
    }
    for (pugi::xml_node element : elements_.children()) {
        const std::string key = element.attribute("Key").as_string();
        if (key.empty()) {
            continue;
        }
        for (pugi::xml_node connection : element.children(kConnectionElement)) {
            wires.push_back(Wire{connection.attribute("Source").as_string(),
                                 connection.attribute("Output").as_string(), key,
                                 connection.attribute("Input").as_string()});
        }
    }
    return wires;
}

std::vector<MissingBlock> KeptBlocks::Blocks() const {
    // A kept block's outputs are known only from the wires that leave it.
    std::map<std::string, std::vector<std::string>> outputs;
    const std::vector<Wire> wires = Wires();
    for (const Wire& wire : wires) {
        if (keys_.count(wire.source) != 0) {
            AddName(outputs[wire.source], wire.output);
        }
    }
    std::vector<MissingBlock> blocks;
    int place = 0;
    for (pugi::xml_node element : elements_.children()) {
        ++place;
        MissingBlock block{
            element.attribute("Key").as_string(),
            element.name(),
            element.child_value("UserName"),
            QPointF(Coordinate(element, "X_Position"), Coordinate(element, "Y_Position")),
            {},
            {}};
        if (block.key.empty()) {
            // Drawn all the same; no wire can name it.
            block.key = "#" + std::to_string(place);
        }
        for (pugi::xml_node connection : element.children(kConnectionElement)) {
            AddName(block.inputs, connection.attribute("Input").as_string());
        }
        if (const auto found = outputs.find(block.key); found != outputs.end()) {
            block.outputs = found->second;
        }
        blocks.push_back(std::move(block));
    }
    return blocks;
}

void KeptBlocks::AppendTo(pugi::xml_node root) const {
    for (pugi::xml_node element : elements_.children()) {
        root.append_copy(element);
    }
}

}  // namespace zerbin::studio
