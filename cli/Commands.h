// The commands of zerbin, each given the parsed command line and the run's host; each
// returns the exit status and throws UsageError or UnreadableError for the early ends.
#pragma once

#include <ostream>

#include "cli/CommandLine.h"
#include "cli/HostSession.h"

namespace zerbin::cli {

struct CommandContext {
    const Invocation& invocation;
    const HostSettings& host;
    StreamMessageSink& messages;
    std::ostream& out;
    std::ostream& err;
};

int RunTypes(const CommandContext& context);
int RunShow(const CommandContext& context);
int RunImage(const CommandContext& context);
int RunSave(const CommandContext& context);
int RunExport(const CommandContext& context);
int RunLoad(const CommandContext& context);
int RunCheck(const CommandContext& context);
// check --project: every block of the project whose type changed since it was saved, and
// what changed, one line each on out; exit status 1 when there is any.
int CheckProject(const CommandContext& context);
int RunSet(const CommandContext& context);
int RunFlat(const CommandContext& context);
int RunDiff(const CommandContext& context);
int RunMerge(const CommandContext& context);
int RunImport(const CommandContext& context);
int RunReset(const CommandContext& context);
int RunCopy(const CommandContext& context);

}  // namespace zerbin::cli
