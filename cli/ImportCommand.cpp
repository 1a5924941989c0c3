// import: the blocks of one project merged into another by key.
#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cli/CliErrors.h"
#include "cli/Commands.h"
#include "cli/ProjectBlockEdit.h"
#include "cli/ProjectModel.h"

namespace zerbin::cli {

namespace {

// Which block of the project a block of FROM is, when it is one: the same key on the same type.
// The same key on another type is another block that happens to share it.
const ProjectBlock* Existing(const std::unordered_map<std::string, ProjectBlock>& byKey,
                             pugi::xml_node element) {
    const std::string key = KeyOf(element);
    const auto found = key.empty() ? byKey.end() : byKey.find(key);
    return found != byKey.end() && std::string_view(found->second.element.name()) == element.name()
               ? &found->second
               : nullptr;
}

}  // namespace

int RunImport(const CommandContext& context) {
    const std::vector<std::string>& args = context.invocation.arguments;
    Project project(args[0]);
    // Read to be changed in memory only: its wires follow the blocks renamed on the way in.
    Project from(args[1]);
    const HostSettings host = ProjectHost(context.host, project.ShortFloat());
    std::unordered_map<std::string, ProjectBlock> byKey;
    for (const ProjectBlock& block : project.Blocks()) {
        byKey.emplace(KeyOf(block.element), block);
    }
    // The new blocks first, so that every wire of FROM that names one of them under a key the
    // project had already is made to name it under its new key before anything is copied on.
    std::vector<std::string> lines(from.Blocks().size());
    std::vector<pugi::xml_node> created;
    std::unordered_map<std::string, std::string> renames;
    for (std::size_t i = 0; i < from.Blocks().size(); ++i) {
        const pugi::xml_node element = from.Blocks()[i].element;
        if (Existing(byKey, element) == nullptr) {
            const auto [copy, key] = project.Adopt(element);
            if (const std::string was = KeyOf(element); !was.empty() && was != key) {
                renames.emplace(was, key);
            }
            created.push_back(copy);
            lines[i] = "created\t" + EscapedLine(key) + '\n';
        }
    }
    if (!renames.empty()) {
        for (const ProjectBlock& block : from.Blocks()) {
            RenameWireSources(block.element, renames);
        }
        for (const pugi::xml_node copy : created) {
            RenameWireSources(copy, renames);
        }
    }
    // A wire's reference in the image follows its source as the project now numbers it.
    for (const pugi::xml_node copy : created) {
        if (copy.child("Connection") && HasBlockType(host.library, copy.name())) {
            ProjectBlockEdit edit(host, copy, KeyOf(copy));
            edit.Rewire(project);
            edit.StoreImage();
        }
    }
    std::vector<std::string> objections;
    for (std::size_t i = 0; i < from.Blocks().size(); ++i) {
        const pugi::xml_node element = from.Blocks()[i].element;
        const ProjectBlock* existing = Existing(byKey, element);
        if (existing == nullptr) {
            continue;
        }
        if (!context.invocation.update) {
            lines[i] = "kept\t" + EscapedLine(existing->id) + '\n';
            continue;
        }
        // The block stays where it is in the project and keeps its export index; the rest
        // comes from FROM, values through the editors' rules. What FROM has as the project
        // has it already is no update: the block is brought to life only for values that
        // change, and for wires that change.
        const Settings have = ReadSettings(existing->element);
        const auto same = [&](const std::string& name, const std::string& value) {
            const auto found = std::find_if(have.begin(), have.end(), [&](const auto& setting) {
                return setting.first == name;
            });
            return found != have.end() && found->second == value;
        };
        std::vector<Assignment> values;
        bool rewired = false;
        for (const auto& [name, value] : ReadSettings(element)) {
            if (same(name, value)) {
                continue;
            }
            if (name[0] != '@') {
                values.push_back(Assignment{name, value});
            } else if (name != kExportIndexSetting && name != kTypeSetting) {
                WriteSetting(existing->element, name, value);
                rewired = rewired || name.rfind(kWirePrefix, 0) == 0;
            }
        }
        if (!values.empty() || (rewired && HasBlockType(host.library, element.name()))) {
            ProjectBlockEdit edit(host, existing->element, existing->id);
            const ValueList before = edit.Values();
            std::vector<Assignment> known;
            for (const Assignment& value : values) {
                if (edit.Attribute(value.name)) {
                    known.push_back(value);
                }
            }
            for (std::string& objection : edit.Write(known)) {
                objections.push_back(std::move(objection));
            }
            if (rewired) {
                edit.Rewire(project);
            }
            edit.Store(before);
        }
        lines[i] = "updated\t" + EscapedLine(existing->id) + '\n';
    }
    for (const std::string& objection : objections) {
        context.err << kErrorPrefix << objection << "; nothing written\n";
    }
    if (!objections.empty()) {
        return kExitFailure;
    }
    project.Write();
    for (const std::string& line : lines) {
        context.out << line;
    }
    return kExitOk;
}

}  // namespace zerbin::cli
