// check --project: the blocks of a saved project restored against the library as it is now,
// and every block whose type changed since it was saved listed with what changed.
#include <string>

#include "cli/CliErrors.h"
#include "cli/Commands.h"
#include "cli/ProjectBlockEdit.h"
#include "cli/ProjectModel.h"

namespace zerbin::cli {

int CheckProject(const CommandContext& context) {
    const Project project(*context.invocation.project);
    const HostSettings host = ProjectHost(context.host, project.ShortFloat());
    std::string report;
    for (const ProjectBlock& block : project.Blocks()) {
        const std::string type = block.element.name();
        const std::string prefix = EscapedLine(block.id) + " (" + type + "): ";
        if (!HasBlockType(host.library, type)) {
            report += prefix + "type not in the library; the block is kept as saved\n";
            continue;
        }
        const ProjectBlockEdit edit(host, block.element, block.id);
        for (const std::string& line : edit.Block().ITypeChange_Changes()) {
            report += prefix + EscapedLine(line) + '\n';
        }
    }
    context.out << report;
    return report.empty() ? kExitOk : kExitFailure;
}

}  // namespace zerbin::cli
