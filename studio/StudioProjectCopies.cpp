// Copies of blocks, as the clipboard carries them between projects and studios (the text of a
// project document), and values written to blocks by name, as a paste of parameters, a reset
// and a value set on many blocks write them.
#include <set>
#include <sstream>
#include <unordered_map>
#include <unordered_set>

#include "interfaces/ITypeChange.h"
#include "studio/BlockFactory.h"
#include "studio/StudioMessages.h"
#include "studio/StudioProject.h"

namespace zerbin::studio {
namespace {

constexpr const char* kRoot = "Project";

std::shared_ptr<IAttribute> AttributeOf(const std::shared_ptr<IAppObject>& block,
                                        const std::string& name) {
    const std::shared_ptr<IAttributes> attributes =
        block ? block->IAppObject_Attributes() : nullptr;
    return attributes ? attributes->IAttributes_Item(name) : nullptr;
}

// Why the attribute does not take the text; empty when it does, with what to write in value.
std::string Objection(IAttribute& attribute, const std::string& text, std::string& value) {
    value = text;
    auto* rules = dynamic_cast<IAttributeRules*>(&attribute);
    return rules ? rules->IAttributeRules_Check(text, value) : std::string();
}

}  // namespace

std::string StudioProject::CopyText(const std::vector<std::string>& keys) const {
    pugi::xml_document document;
    pugi::xml_node root = document.append_child(kRoot);
    const std::unordered_set<std::string> copied(keys.begin(), keys.end());
    for (const std::string& key : keys) {
        pugi::xml_node element = BlockElement(key, document, root);
        // A wire from a block left behind would lead nowhere in the copy.
        for (pugi::xml_node connection = element.child(kConnectionElement); connection;) {
            const pugi::xml_node next = connection.next_sibling(kConnectionElement);
            if (copied.count(connection.attribute("Source").as_string()) == 0) {
                element.remove_child(connection);
            }
            connection = next;
        }
    }
    std::ostringstream out;
    document.save(out, "  ", pugi::format_default, pugi::encoding_utf8);
    return out.str();
}

std::shared_ptr<pugi::xml_document> StudioProject::ReadCopy(const std::string& text,
                                                            std::string* why) {
    std::string reason;
    std::shared_ptr<pugi::xml_document> document =
        BlockFactory::ProjectFiles()->IProjectFiles_ReadText(text, "the clipboard", reason);
    if (document && std::string(document->document_element().name()) != kRoot) {
        reason = "the clipboard holds no blocks";
        document.reset();
    }
    if (!document && why != nullptr) {
        *why = reason;
    }
    return document;
}

void StudioProject::PasteBlocks(pugi::xml_node root, QPointF offset,
                                std::vector<std::string>& keys) {
    std::unordered_map<std::string, std::string> keyOf;
    std::vector<std::pair<std::string, pugi::xml_node>> pasted;
    std::set<std::string> missing;
    for (pugi::xml_node element : root.children()) {
        if (element.type() != pugi::node_element) {
            continue;
        }
        if (!factory_.HasType(element.name())) {
            if (missing.insert(element.name()).second) {
                ShowMessage("The library has no block type '" + std::string(element.name()) +
                                "': its blocks are not pasted.",
                            "Zerbin Studio", MessageIcon::Exclamation);
            }
            continue;
        }
        // The copy's own key, export index and wires stay behind: the block gets its own, and
        // its wires are made once every pasted block is there.
        pugi::xml_node copy = scratch_.append_copy(element);
        struct Drop {
            pugi::xml_document& scratch;
            pugi::xml_node copy;
            ~Drop() { scratch.remove_child(copy); }
        } drop{scratch_, copy};
        copy.remove_attribute("ExportIndex");
        copy.remove_attribute("Key");
        while (pugi::xml_node connection = copy.child(kConnectionElement)) {
            copy.remove_child(connection);
        }
        const std::string name = FreeName(element.child_value("UserName"));
        const std::string key = RestoreBlock(copy, -1);
        if (key.empty()) {
            continue;
        }
        keys.push_back(key);
        const std::shared_ptr<IAppObject> block = Block(key);
        block->IAppObject_UserName(name);
        block->IAppObject_XPosition(block->IAppObject_XPosition() + offset.x());
        block->IAppObject_YPosition(block->IAppObject_YPosition() + offset.y());
        emit blockChanged(key);
        keyOf.emplace(element.attribute("Key").as_string(), key);
        pasted.emplace_back(key, element);
    }
    for (const auto& [key, element] : pasted) {
        for (pugi::xml_node connection : element.children(kConnectionElement)) {
            const auto source = keyOf.find(connection.attribute("Source").as_string());
            if (source != keyOf.end()) {
                Connect(Wire{source->second, connection.attribute("Output").as_string(), key,
                             connection.attribute("Input").as_string()});
            }
        }
    }
}

ValueSnapshot StudioProject::CopiedValues(pugi::xml_node root) {
    ValueSnapshot values;
    for (pugi::xml_node element : root.children()) {
        if (element.type() == pugi::node_element) {
            for (pugi::xml_node value : element.child("Attributes").children()) {
                if (value.type() == pugi::node_element) {
                    values.emplace_back(value.name(), value.child_value());
                }
            }
            break;
        }
    }
    return values;
}

std::vector<std::string> StudioProject::WriteValues(const std::string& key,
                                                    const ValueSnapshot& values) {
    std::vector<std::string> refused;
    const std::shared_ptr<IAppObject> block = Block(key);
    // The unit selector re-derives its dependents, so it goes first and they follow.
    for (const bool units : {true, false}) {
        for (const auto& [name, text] : values) {
            const std::shared_ptr<IAttribute> attribute = AttributeOf(block, name);
            if (!attribute) {
                if (!units) {
                    refused.push_back(name + ": the block has no such parameter");
                }
                continue;
            }
            if (attribute->IAttribute_IsUnit() != units) {
                continue;
            }
            std::string value;
            const std::string objection = Objection(*attribute, text, value);
            if (!objection.empty()) {
                refused.push_back(name + ": " + objection);
            } else if (attribute->IAttribute_Value() != value) {
                WriteValue(key, name, value);
            }
        }
    }
    return refused;
}

namespace {

std::shared_ptr<ITypeChange> TypeChangeOf(const std::shared_ptr<IAppObject>& block) {
    return std::dynamic_pointer_cast<ITypeChange>(block);
}

}  // namespace

bool StudioProject::TypeChanged(const std::string& key) const {
    const std::shared_ptr<ITypeChange> typed = TypeChangeOf(Block(key));
    return typed && typed->ITypeChange_IsChanged();
}

std::vector<std::string> StudioProject::TypeChanges(const std::string& key) const {
    const std::shared_ptr<ITypeChange> typed = TypeChangeOf(Block(key));
    return typed ? typed->ITypeChange_Changes() : std::vector<std::string>();
}

std::vector<std::string> StudioProject::UpdateType(const std::string& key) {
    const std::shared_ptr<ITypeChange> typed = TypeChangeOf(Block(key));
    if (!typed) {
        return {};
    }
    std::vector<std::string> dropped;
    {
        Context(Block(key)->IAppObject_UserName());
        dropped = typed->ITypeChange_Update();
    }
    emit blockChanged(key);
    return dropped;
}

ValueSnapshot StudioProject::DefaultValues(const std::string& key) const {
    const std::shared_ptr<IAppObject> block = Block(key);
    if (!block) {
        return {};
    }
    const std::shared_ptr<IAppObject> fresh = MakeBlock(block->IAppObject_UniqueIDString());
    ValueSnapshot values;
    if (const std::shared_ptr<IAttributes> attributes = fresh->IAppObject_Attributes()) {
        for (const std::shared_ptr<IAttribute>& attribute : attributes->IAttributes_NewEnum()) {
            values.emplace_back(attribute->IAttribute_Name(), attribute->IAttribute_Value());
        }
    }
    fresh->IAppObject_Destroy();
    return values;
}

}  // namespace zerbin::studio
