#include "cli/ProjectBlockEdit.h"

#include <cctype>
#include <charconv>
#include <cstdint>

#include "base/Xml.h"
#include "cli/CliErrors.h"
#include "cli/ProjectModel.h"
#include "interfaces/Error.h"
#include "interfaces/IOutput.h"
#include "parameters/ValueRules.h"

namespace zerbin::cli {
namespace {

// An export index as the studio writes it. A block without one has none yet: the host that
// opens the project gives it one, so no reference can be worked out before.
bool ParseExportIndex(std::string_view text, int16_t& index) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), index);
    return error == std::errc() && end == text.data() + text.size() && !text.empty();
}

bool IsHex(std::string_view text) {
    for (const char c : text) {
        if (std::isxdigit(static_cast<unsigned char>(c)) == 0) {
            return false;
        }
    }
    return true;
}

}  // namespace

HostSettings ProjectHost(const HostSettings& host, bool projectShortFloat) {
    HostSettings settings = host;
    settings.shortFloat = host.shortFloat || projectShortFloat;
    return settings;
}

ProjectBlockEdit::ProjectBlockEdit(const HostSettings& host, pugi::xml_node element,
                                   const std::string& id)
    : host_(host), element_(element), id_(id) {
    const std::string type = element.name();
    if (!HasBlockType(host.library, type)) {
        throw Error("block '" + id + "' is of type '" + type + "', which library '" +
                    host.library.string() + "' lacks");
    }
    block_ = std::make_unique<HostedBlock>(host, type, BlockKeys{id, {}, {}});
    // The wires are the host's, not the block's: given them, it would keep them as entries of
    // its own and say so.
    if (element.child("Connection")) {
        pugi::xml_document own;
        pugi::xml_node copy = own.append_copy(element);
        while (pugi::xml_node connection = copy.child("Connection")) {
            copy.remove_child(connection);
        }
        (*block_)->IAppObject_XmlLoad(copy);
    } else {
        (*block_)->IAppObject_XmlLoad(element);
    }
    // Inputs have no element: their references live in the image only, put there by the host
    // that made the wires.
    const std::string image = ImageOf(element);
    if (const std::shared_ptr<IInputs> inputs = (*block_)->IAppObject_Inputs()) {
        for (const std::shared_ptr<IInput>& input : inputs->IInputs_NewEnum()) {
            const std::size_t digits = input->IInput_Extended() ? 6 : 4;
            const std::size_t at = 2 * static_cast<std::size_t>(input->IInput_CDBPosition());
            if (at + digits <= image.size() && IsHex(std::string_view(image).substr(at, digits))) {
                input->IInput_Value(image.substr(at, digits));
            }
        }
    }
}

ValueList ProjectBlockEdit::Values() const {
    ValueList values;
    if (const std::shared_ptr<IAttributes> attributes = (*block_)->IAppObject_Attributes()) {
        for (const std::shared_ptr<IAttribute>& attribute : attributes->IAttributes_NewEnum()) {
            values.emplace_back(attribute->IAttribute_Name(), attribute->IAttribute_Value());
        }
    }
    return values;
}

std::shared_ptr<IAttribute> ProjectBlockEdit::Attribute(const std::string& name) const {
    const std::shared_ptr<IAttributes> attributes = (*block_)->IAppObject_Attributes();
    return attributes ? attributes->IAttributes_Item(name) : nullptr;
}

std::vector<std::string> ProjectBlockEdit::Write(const std::vector<Assignment>& values) {
    std::vector<std::shared_ptr<IAttribute>> targets;
    for (const Assignment& value : values) {
        std::shared_ptr<IAttribute> attribute = Attribute(value.name);
        if (!attribute) {
            throw UsageError("block '" + id_ + "' (" + element_.name() + ") has no parameter " +
                             value.name);
        }
        targets.push_back(std::move(attribute));
    }
    std::vector<std::string> objections;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const ValueVerdict verdict = CheckValue(*targets[i], values[i].value);
        if (!verdict.Taken()) {
            objections.push_back("block '" + id_ + "' " + values[i].name + "=" + values[i].value +
                                 ": " + verdict.objection);
            continue;
        }
        targets[i]->IAttribute_Value(verdict.value);
    }
    return objections;
}

void ProjectBlockEdit::Rewire(const Project& project) {
    const std::shared_ptr<IInputs> inputs = (*block_)->IAppObject_Inputs();
    if (!inputs) {
        return;
    }
    for (pugi::xml_node connection : element_.children("Connection")) {
        const std::shared_ptr<IInput> input =
            inputs->IInputs_Item(connection.attribute("Input").as_string());
        const pugi::xml_node source = project.ByKey(connection.attribute("Source").as_string());
        int16_t index = 0;
        if (!input || !source || !HasBlockType(host_.library, source.name()) ||
            !ParseExportIndex(source.attribute("ExportIndex").as_string(), index)) {
            continue;
        }
        // The reference is the source block's to give, as a host asks it when it wires.
        HostedBlock from(host_, source.name(), BlockKeys{KeyOf(source), {}, {}});
        from->IAppObject_ExportIndex(index);
        const std::shared_ptr<IOutputs> outputs = from->IAppObject_Outputs();
        const auto output = std::dynamic_pointer_cast<IDisplayItem>(
            outputs ? outputs->IOutputs_Item(connection.attribute("Output").as_string()) : nullptr);
        if (!output) {
            continue;
        }
        // An extended input takes three bytes; an output's code fills two of them.
        input->IInput_Value(output->IDisplayItem_Reference() +
                            (input->IInput_Extended() ? "00" : ""));
    }
}

std::string ProjectBlockEdit::Image() const {
    std::string image = (*block_)->IAppObject_Stream();
    if (image.empty()) {
        throw Error("the image of block '" + id_ + "' cannot be made");
    }
    return image;
}

void ProjectBlockEdit::StoreImage() {
    WriteImage(element_, Image());
}

void ProjectBlockEdit::Store(const ValueList& before) {
    const std::string image = Image();
    const ValueList after = Values();
    for (std::size_t i = 0; i < after.size(); ++i) {
        const auto& [name, value] = after[i];
        bool changed = false;
        if (before.empty()) {
            const pugi::xml_node saved = ParameterElement(element_, name);
            changed = !saved || saved.text().get() != value;
        } else {
            // What the write left alone stays as the file has it, also where the file has
            // no element and the block its type's default.
            changed = i >= before.size() || before[i].second != value;
        }
        if (changed) {
            WriteSetting(element_, name, value);
        }
    }
    WriteImage(element_, image);
}

}  // namespace zerbin::cli
