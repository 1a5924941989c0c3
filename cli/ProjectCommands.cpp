// set, flat, reset and copy: the commands that read or change the blocks of a saved project.
#include <algorithm>
#include <string>
#include <vector>

#include "cli/CliErrors.h"
#include "cli/Commands.h"
#include "cli/ProjectBlockEdit.h"
#include "cli/ProjectModel.h"
#include "parameters/ValueRules.h"

namespace zerbin::cli {
namespace {

std::vector<Assignment> Assignments(const std::vector<std::string>& texts) {
    std::vector<Assignment> assignments;
    for (const std::string& text : texts) {
        const std::size_t equals = text.find('=');
        if (equals == std::string::npos || equals == 0) {
            throw UsageError("expected NAME=VALUE, found '" + text + "'");
        }
        assignments.push_back(Assignment{text.substr(0, equals), text.substr(equals + 1)});
    }
    return assignments;
}

// A unit selector re-derives its dependents, so it is written before them, as a load does.
std::vector<Assignment> UnitsFirst(const ProjectBlockEdit& edit, const ValueList& values) {
    std::vector<Assignment> first;
    std::vector<Assignment> rest;
    for (const auto& [name, value] : values) {
        const std::shared_ptr<IAttribute> attribute = edit.Attribute(name);
        (attribute && attribute->IAttribute_IsUnit() ? first : rest)
            .push_back(Assignment{name, value});
    }
    first.insert(first.end(), rest.begin(), rest.end());
    return first;
}

int ReportObjections(const std::vector<std::string>& objections, std::ostream& err) {
    for (const std::string& objection : objections) {
        err << kErrorPrefix << objection << "; nothing written\n";
    }
    return objections.empty() ? kExitOk : kExitFailure;
}

}  // namespace

int RunSet(const CommandContext& context) {
    const std::vector<std::string>& args = context.invocation.arguments;
    const std::vector<Assignment> values =
        Assignments(std::vector<std::string>(args.begin() + 2, args.end()));
    Project project(args[0]);
    const ProjectBlock& block = project.Find(args[1]);
    ProjectBlockEdit edit(ProjectHost(context.host, project.ShortFloat()), block.element, block.id);
    const ValueList before = edit.Values();
    if (const int status = ReportObjections(edit.Write(values), context.err); status != kExitOk) {
        return status;
    }
    edit.Store(before);
    project.Write();
    return kExitOk;
}

int RunFlat(const CommandContext& context) {
    const Project project(context.invocation.arguments.front());
    std::vector<const ProjectBlock*> blocks;
    for (const ProjectBlock& block : project.Blocks()) {
        blocks.push_back(&block);
    }
    // By block only: a block's settings keep the order its type gives them.
    std::stable_sort(blocks.begin(), blocks.end(),
                     [](const auto* a, const auto* b) { return NaturalLess(a->id, b->id); });
    std::string text;
    for (const ProjectBlock* block : blocks) {
        std::string id;
        AppendEscapedLine(id, block->id);
        for (const auto& [name, value] : ReadSettings(block->element)) {
            text.append(id).append(1, '\t').append(name).append(1, '\t');
            AppendEscapedLine(text, value);
            text.append(1, '\n');
        }
    }
    context.out << text;
    return kExitOk;
}

int RunReset(const CommandContext& context) {
    const std::vector<std::string>& args = context.invocation.arguments;
    Project project(args[0]);
    std::vector<const ProjectBlock*> blocks;
    if (args.size() == 1) {
        for (const ProjectBlock& block : project.Blocks()) {
            blocks.push_back(&block);
        }
    } else {
        for (auto name = args.begin() + 1; name != args.end(); ++name) {
            blocks.push_back(&project.Find(*name));
        }
    }
    const HostSettings host = ProjectHost(context.host, project.ShortFloat());
    for (const ProjectBlock* block : blocks) {
        ProjectBlockEdit edit(host, block->element, block->id);
        ValueList defaults;
        {
            const HostedBlock fresh(host, block->element.name(), BlockKeys{block->id, {}, {}});
            if (const std::shared_ptr<IAttributes> attributes = fresh->IAppObject_Attributes()) {
                for (const std::shared_ptr<IAttribute>& attribute :
                     attributes->IAttributes_NewEnum()) {
                    defaults.emplace_back(attribute->IAttribute_Name(),
                                          attribute->IAttribute_Value());
                }
            }
        }
        // The type's own defaults, written as they stand: the rules are for what users type.
        for (const Assignment& value : UnitsFirst(edit, defaults)) {
            edit.Attribute(value.name)->IAttribute_Value(value.value);
        }
        edit.Store({});
    }
    project.Write();
    return kExitOk;
}

int RunCopy(const CommandContext& context) {
    const std::vector<std::string>& args = context.invocation.arguments;
    Project project(args[0]);
    const HostSettings host = ProjectHost(context.host, project.ShortFloat());
    const ProjectBlock& from = project.Find(args[1]);
    ValueList values;
    {
        const ProjectBlockEdit source(host, from.element, from.id);
        values = source.Values();
    }
    std::string notCopied;
    for (auto name = args.begin() + 2; name != args.end(); ++name) {
        const ProjectBlock& to = project.Find(*name);
        if (to.element == from.element) {
            continue;
        }
        ProjectBlockEdit edit(host, to.element, to.id);
        const ValueList before = edit.Values();
        ValueList shared;
        for (const auto& [parameter, value] : values) {
            if (edit.Attribute(parameter)) {
                shared.emplace_back(parameter, value);
            } else {
                notCopied += to.id + '\t' + parameter + "\tno such parameter\n";
            }
        }
        for (const Assignment& value : UnitsFirst(edit, shared)) {
            const std::shared_ptr<IAttribute> attribute = edit.Attribute(value.name);
            // Judged where it lands: the same name may have other limits or another list.
            const ValueVerdict verdict = CheckValue(*attribute, value.value);
            if (verdict.Taken()) {
                attribute->IAttribute_Value(verdict.value);
            } else {
                notCopied += to.id + '\t' + value.name + '\t' + value.value + ": " +
                             verdict.objection + '\n';
            }
        }
        edit.Store(before);
    }
    project.Write();
    context.out << notCopied;
    return kExitOk;
}

}  // namespace zerbin::cli
