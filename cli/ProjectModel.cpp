#include "cli/ProjectModel.h"

#include <array>
#include <cctype>
#include <cstring>
#include <unordered_set>
#include <vector>

#include "base/MMain.h"
#include "base/Xml.h"
#include "cli/CliErrors.h"
#include "platform/ProjectFile.h"

namespace zerbin::cli {
namespace {

constexpr const char* kUserName = "UserName";
constexpr const char* kXPosition = "X_Position";
constexpr const char* kYPosition = "Y_Position";
constexpr const char* kCdb = "CDB";
constexpr const char* kAttributes = "Attributes";
constexpr const char* kOutputs = "Outputs";
constexpr const char* kConnection = "Connection";
constexpr const char* kKey = "Key";
constexpr const char* kExportIndex = "ExportIndex";
constexpr const char* kColor = "Color";
constexpr const char* kIsDisplayable = "IsDisplayable";

// Element names are read as the block's load reads them: in any letter case.
pugi::xml_node ChildNoCase(pugi::xml_node parent, std::string_view name) {
    for (pugi::xml_node child : parent.children()) {
        if (child.type() == pugi::node_element && EqualsNoCase(xml::BaseNameView(child), name)) {
            return child;
        }
    }
    return {};
}

std::string TextOf(pugi::xml_node element) {
    return std::string(xml::FirstChildTextView(element).value_or(std::string_view()));
}

bool StartsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

bool IsOwnAttribute(std::string_view name) {
    return name == kKey || name == kExportIndex || name == kColor;
}

bool IsOwnElement(std::string_view name) {
    for (const char* own : {kUserName, kXPosition, kYPosition, kCdb, kAttributes, kOutputs}) {
        if (EqualsNoCase(name, own)) {
            return true;
        }
    }
    return name == kConnection;
}

pugi::xml_node ChildOrNew(pugi::xml_node parent, const char* name) {
    pugi::xml_node child = ChildNoCase(parent, name);
    return child ? child : xml::AppendChildElement(parent, name);
}

void SetOrRemoveChild(pugi::xml_node element, const char* name,
                      const std::optional<std::string>& value) {
    if (value) {
        SetText(ChildOrNew(element, name), *value);
    } else if (pugi::xml_node child = ChildNoCase(element, name)) {
        element.remove_child(child);
    }
}

void SetOrRemoveAttribute(pugi::xml_node element, const char* name,
                          const std::optional<std::string>& value) {
    if (value) {
        xml::SetAttribute(element, name, *value);
    } else {
        element.remove_attribute(name);
    }
}

pugi::xml_node WireElement(pugi::xml_node element, std::string_view input) {
    for (pugi::xml_node connection : element.children(kConnection)) {
        if (connection.attribute("Input").as_string() == input) {
            return connection;
        }
    }
    return {};
}

void WriteWire(pugi::xml_node element, const std::string& input,
               const std::optional<std::string>& value) {
    pugi::xml_node connection = WireElement(element, input);
    if (!value) {
        element.remove_child(connection);
        return;
    }
    const std::size_t slash = value->rfind('/');
    if (slash == std::string::npos) {
        throw UsageError("a wire is SOURCE/OUTPUT, found '" + *value + "'");
    }
    if (!connection) {
        connection = xml::AppendChildElement(element, kConnection);
        xml::SetAttribute(connection, "Input", input);
    }
    xml::SetAttribute(connection, "Source", value->substr(0, slash));
    xml::SetAttribute(connection, "Output", value->substr(slash + 1));
}

void WriteDisplayable(pugi::xml_node element, const std::string& output, bool displayable) {
    pugi::xml_node outputs = ChildNoCase(element, kOutputs);
    if (!displayable) {
        if (pugi::xml_node child = ChildNoCase(outputs, output)) {
            outputs.remove_child(child);
        }
        // The block writes no "Outputs" when none is displayable.
        if (outputs && !outputs.first_child()) {
            element.remove_child(outputs);
        }
        return;
    }
    if (!outputs) {
        // It stands after "Attributes", as the block writes it.
        const pugi::xml_node attributes = ChildNoCase(element, kAttributes);
        outputs = attributes ? element.insert_child_after(kOutputs, attributes)
                             : xml::AppendChildElement(element, kOutputs);
    }
    pugi::xml_node child = ChildNoCase(outputs, output);
    if (!child) {
        child = xml::AppendChildElement(outputs, output);
    }
    xml::SetAttribute(child, kIsDisplayable, "1");
}

}  // namespace

Project::Project(std::filesystem::path file) : file_(std::move(file)) {
    try {
        document_ = ProjectFile(file_).Read();
    } catch (const ProjectFileError& error) {
        throw UnreadableError(error.what());
    }
    Reindex();
}

void Project::Reindex() {
    blocks_.clear();
    byKey_.clear();
    indexes_.clear();
    std::unordered_set<std::string> taken;
    std::size_t position = 0;
    for (pugi::xml_node element : Root().children()) {
        if (element.type() != pugi::node_element) {
            continue;
        }
        ++position;
        std::string id = KeyOf(element);
        if (id.empty()) {
            id = TextOf(ChildNoCase(element, kUserName));
        }
        // A name two blocks share names neither: both go by their place.
        if (id.empty() || !taken.insert(id).second) {
            id = "#" + std::to_string(position);
        }
        blocks_.push_back(ProjectBlock{element, std::move(id)});
        byKey_.emplace(KeyOf(element), element);
        indexes_.insert(element.attribute(kExportIndex).as_string());
    }
}

const ProjectBlock& Project::Find(const std::string& name) const {
    for (const ProjectBlock& block : blocks_) {
        if (KeyOf(block.element) == name) {
            return block;
        }
    }
    const ProjectBlock* named = nullptr;
    for (const ProjectBlock& block : blocks_) {
        if (TextOf(ChildNoCase(block.element, kUserName)) == name) {
            if (named != nullptr) {
                throw UsageError("more than one block of project '" + file_.string() +
                                 "' is named '" + name + "'; name it by its key or #N");
            }
            named = &block;
        }
    }
    if (named != nullptr) {
        return *named;
    }
    if (name.size() > 1 && name[0] == '#') {
        std::size_t position = 0;
        for (std::size_t i = 1; i < name.size() && position <= blocks_.size(); ++i) {
            if (std::isdigit(static_cast<unsigned char>(name[i])) == 0) {
                position = 0;
                break;
            }
            position = position * 10 + static_cast<std::size_t>(name[i] - '0');
        }
        if (position >= 1 && position <= blocks_.size()) {
            return blocks_[position - 1];
        }
    }
    throw UsageError("no block '" + name + "' in project '" + file_.string() + "'");
}

std::pair<pugi::xml_node, std::string> Project::Adopt(pugi::xml_node element) {
    pugi::xml_node copy = Root().append_copy(element);
    std::string key = KeyOf(copy);
    if (key.empty() || byKey_.count(key) != 0) {
        do {
            key = "Block" + std::to_string(nextKey_++);
        } while (byKey_.count(key) != 0);
        xml::SetAttribute(copy, kKey, key);
    }
    byKey_.emplace(key, copy);
    const std::string index = copy.attribute(kExportIndex).as_string();
    if (!index.empty() && !indexes_.insert(index).second) {
        while (nextIndex_ < 32767 && indexes_.count(std::to_string(nextIndex_)) != 0) {
            ++nextIndex_;
        }
        xml::SetAttribute(copy, kExportIndex, std::to_string(nextIndex_));
        indexes_.insert(std::to_string(nextIndex_));
    }
    blocks_.push_back(ProjectBlock{copy, key});
    return {copy, key};
}

pugi::xml_node Project::ByKey(const std::string& key) const {
    const auto found = byKey_.find(key);
    return found == byKey_.end() || key.empty() ? pugi::xml_node() : found->second;
}

bool Project::ShortFloat() const {
    return std::string_view(Root().attribute("ShortFloat").as_string()) == "1";
}

void Project::Write() const {
    ProjectFile(file_).Write(*document_);
}

std::string KeyOf(pugi::xml_node element) {
    return element.attribute(kKey).as_string();
}

bool RenameWireSources(pugi::xml_node element,
                       const std::unordered_map<std::string, std::string>& renames) {
    bool renamed = false;
    for (pugi::xml_node connection : element.children(kConnection)) {
        const auto found = renames.find(connection.attribute("Source").as_string());
        if (found != renames.end()) {
            xml::SetAttribute(connection, "Source", found->second);
            renamed = true;
        }
    }
    return renamed;
}

Settings ReadSettings(pugi::xml_node element) {
    // One walk over the element's children finds the first of each of the block's own
    // elements, as the block's load would take them; the settings still come in one order.
    enum Own { kName, kX, kY, kParameters, kDisplayable, kOwnCount };
    const std::pair<Own, const char*> ownNames[] = {{kName, kUserName},
                                                    {kX, kXPosition},
                                                    {kY, kYPosition},
                                                    {kParameters, kAttributes},
                                                    {kDisplayable, kOutputs}};
    std::array<pugi::xml_node, kOwnCount> own{};
    std::vector<pugi::xml_node> wires;
    std::vector<pugi::xml_node> others;
    std::size_t count = 0;
    for (pugi::xml_node child : element.children()) {
        ++count;
        if (child.type() != pugi::node_element) {
            continue;
        }
        const std::string_view name = xml::BaseNameView(child);
        for (const auto& [slot, ownName] : ownNames) {
            if (!own[slot] && EqualsNoCase(name, ownName)) {
                own[slot] = child;
                break;
            }
        }
        if (std::string_view(child.name()) == kConnection) {
            wires.push_back(child);
        } else if (!IsOwnElement(child.name())) {
            others.push_back(child);
        }
    }
    Settings settings;
    settings.reserve(count + 8);
    settings.emplace_back(kTypeSetting, element.name());
    const std::pair<std::string_view, Own> placed[] = {
        {kNameSetting, kName}, {kXSetting, kX}, {kYSetting, kY}};
    for (const auto& [setting, slot] : placed) {
        if (own[slot]) {
            settings.emplace_back(setting, TextOf(own[slot]));
        }
    }
    if (pugi::xml_attribute index = element.attribute(kExportIndex)) {
        settings.emplace_back(kExportIndexSetting, index.value());
    }
    if (pugi::xml_attribute color = element.attribute(kColor)) {
        settings.emplace_back(kColorSetting, color.value());
    }
    for (pugi::xml_node parameter : own[kParameters].children()) {
        if (parameter.type() == pugi::node_element) {
            settings.emplace_back(parameter.name(), TextOf(parameter));
        }
    }
    for (pugi::xml_node output : own[kDisplayable].children()) {
        if (output.type() == pugi::node_element && output.attribute(kIsDisplayable)) {
            settings.emplace_back(std::string(kDisplayablePrefix) + output.name(), "1");
        }
    }
    for (pugi::xml_node connection : wires) {
        settings.emplace_back(std::string(kWirePrefix) + connection.attribute("Input").as_string(),
                              std::string(connection.attribute("Source").as_string()) + "/" +
                                  connection.attribute("Output").as_string());
    }
    // What neither the block nor the studio writes is still the block's: it is shown too.
    for (pugi::xml_attribute attribute : element.attributes()) {
        if (!IsOwnAttribute(attribute.name())) {
            settings.emplace_back(std::string("@") + attribute.name(), attribute.value());
        }
    }
    for (pugi::xml_node child : others) {
        settings.emplace_back(std::string("@") + child.name(), TextOf(child));
    }
    return settings;
}

namespace {

bool SameAttributes(pugi::xml_node a, pugi::xml_node b) {
    pugi::xml_attribute x = a.first_attribute();
    pugi::xml_attribute y = b.first_attribute();
    for (; x && y; x = x.next_attribute(), y = y.next_attribute()) {
        if (std::strcmp(x.name(), y.name()) != 0 || std::strcmp(x.value(), y.value()) != 0) {
            return false;
        }
    }
    return !x && !y;
}

bool SameNode(pugi::xml_node a, pugi::xml_node b) {
    return a.type() == b.type() && std::strcmp(a.name(), b.name()) == 0 &&
           std::strcmp(a.value(), b.value()) == 0 && SameAttributes(a, b);
}

}  // namespace

// A block element is shallow, but a project may nest deeper than any call stack, so the walk
// keeps its own.
bool SameTree(pugi::xml_node a, pugi::xml_node b) {
    if (!SameNode(a, b)) {
        return false;
    }
    std::vector<std::pair<pugi::xml_node, pugi::xml_node>> pending{{a, b}};
    while (!pending.empty()) {
        const auto [x, y] = pending.back();
        pending.pop_back();
        pugi::xml_node i = x.first_child();
        pugi::xml_node j = y.first_child();
        for (; i && j; i = i.next_sibling(), j = j.next_sibling()) {
            if (!SameNode(i, j)) {
                return false;
            }
            if (i.first_child() || j.first_child()) {
                pending.emplace_back(i, j);
            }
        }
        if (i || j) {
            return false;
        }
    }
    return true;
}

bool SameSettings(pugi::xml_node a, pugi::xml_node b) {
    return SameTree(a, b) || ReadSettings(a) == ReadSettings(b);
}

void WriteSetting(pugi::xml_node element, const std::string& name,
                  const std::optional<std::string>& value) {
    if (name == kTypeSetting) {
        if (value && !xml::IsValidName(*value)) {
            throw UsageError("'" + *value + "' cannot be a block type");
        }
        if (value) {
            element.set_name(value->c_str());
        }
    } else if (name == kNameSetting) {
        SetOrRemoveChild(element, kUserName, value);
    } else if (name == kXSetting) {
        SetOrRemoveChild(element, kXPosition, value);
    } else if (name == kYSetting) {
        SetOrRemoveChild(element, kYPosition, value);
    } else if (name == kExportIndexSetting) {
        SetOrRemoveAttribute(element, kExportIndex, value);
    } else if (name == kColorSetting) {
        SetOrRemoveAttribute(element, kColor, value);
    } else if (StartsWith(name, kDisplayablePrefix)) {
        WriteDisplayable(element, name.substr(kDisplayablePrefix.size()), value.has_value());
    } else if (StartsWith(name, kWirePrefix)) {
        WriteWire(element, name.substr(kWirePrefix.size()), value);
    } else if (StartsWith(name, "@")) {
        const std::string other = name.substr(1);
        if (element.attribute(other.c_str())) {
            SetOrRemoveAttribute(element, other.c_str(), value);
        } else {
            SetOrRemoveChild(element, other.c_str(), value);
        }
    } else {
        pugi::xml_node parameter = ParameterElement(element, name);
        if (!value) {
            parameter.parent().remove_child(parameter);
        } else {
            if (!parameter) {
                parameter = xml::AppendChildElement(ChildOrNew(element, kAttributes), name);
            }
            SetText(parameter, *value);
        }
    }
}

pugi::xml_node ParameterElement(pugi::xml_node element, std::string_view name) {
    return ChildNoCase(ChildNoCase(element, kAttributes), name);
}

void SetText(pugi::xml_node element, const std::string& value) {
    while (pugi::xml_node child = element.first_child()) {
        element.remove_child(child);
    }
    xml::AppendText(element, value);
}

std::string ImageOf(pugi::xml_node element) {
    return TextOf(ChildNoCase(element, kCdb));
}

void WriteImage(pugi::xml_node element, const std::string& image) {
    SetText(ChildOrNew(element, kCdb), image);
}

bool NaturalLess(std::string_view a, std::string_view b) {
    const auto digit = [](char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; };
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < a.size() && j < b.size()) {
        if (digit(a[i]) && digit(b[j])) {
            std::size_t endA = i;
            std::size_t endB = j;
            while (endA < a.size() && digit(a[endA])) {
                ++endA;
            }
            while (endB < b.size() && digit(b[endB])) {
                ++endB;
            }
            // Leading zeros aside, the longer run is the larger number.
            std::string_view runA = a.substr(i, endA - i);
            std::string_view runB = b.substr(j, endB - j);
            while (runA.size() > 1 && runA[0] == '0') {
                runA.remove_prefix(1);
            }
            while (runB.size() > 1 && runB[0] == '0') {
                runB.remove_prefix(1);
            }
            if (runA.size() != runB.size()) {
                return runA.size() < runB.size();
            }
            if (runA != runB) {
                return runA < runB;
            }
            i = endA;
            j = endB;
            continue;
        }
        if (a[i] != b[j]) {
            return a[i] < b[j];
        }
        ++i;
        ++j;
    }
    // Equal as numbers ("07" and "7"): fall back to the texts so that the order is total.
    if (i == a.size() && j == b.size()) {
        return a < b;
    }
    return i == a.size();
}

}  // namespace zerbin::cli
