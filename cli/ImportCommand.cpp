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

int RunImport(const CommandContext& context) {
    const std::vector<std::string>& args = context.invocation.arguments;
    Project project(args[0]);
    const Project from(args[1]);
    const HostSettings host = ProjectHost(context.host, project.ShortFloat());
    std::unordered_map<std::string, ProjectBlock> byKey;
    for (const ProjectBlock& block : project.Blocks()) {
        byKey.emplace(KeyOf(block.element), block);
    }
    std::string report;
    std::vector<std::string> objections;
    for (const ProjectBlock& block : from.Blocks()) {
        const std::string key = KeyOf(block.element);
        const auto found = key.empty() ? byKey.end() : byKey.find(key);
        // The same key on another type is another block that happens to share it.
        const ProjectBlock* existing =
            found != byKey.end() &&
                    std::string_view(found->second.element.name()) == block.element.name()
                ? &found->second
                : nullptr;
        if (existing == nullptr) {
            const std::string made = project.Adopt(block.element).second;
            report += "created\t" + EscapedLine(made) + '\n';
            continue;
        }
        if (!context.invocation.update) {
            report += "kept\t" + EscapedLine(existing->id) + '\n';
            continue;
        }
        // The block stays where it is in the project and keeps its export index; the rest
        // comes from FROM, values through the editors' rules. What FROM has as the project
        // has it already is no update: the block is brought to life only for values that
        // change.
        const Settings have = ReadSettings(existing->element);
        const auto same = [&](const std::string& name, const std::string& value) {
            const auto found = std::find_if(have.begin(), have.end(), [&](const auto& setting) {
                return setting.first == name;
            });
            return found != have.end() && found->second == value;
        };
        std::vector<Assignment> values;
        for (const auto& [name, value] : ReadSettings(block.element)) {
            if (same(name, value)) {
                continue;
            }
            if (name[0] != '@') {
                values.push_back(Assignment{name, value});
            } else if (name != kExportIndexSetting && name != kTypeSetting) {
                WriteSetting(existing->element, name, value);
            }
        }
        if (!values.empty()) {
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
            edit.Store(before);
        }
        report += "updated\t" + EscapedLine(existing->id) + '\n';
    }
    for (const std::string& objection : objections) {
        context.err << kErrorPrefix << objection << "; nothing written\n";
    }
    if (!objections.empty()) {
        return kExitFailure;
    }
    project.Write();
    context.out << report;
    return kExitOk;
}

}  // namespace zerbin::cli
