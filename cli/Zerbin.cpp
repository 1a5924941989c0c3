#include "cli/Zerbin.h"

#include <cerrno>
#include <cstring>
#include <exception>
#include <filesystem>
#include <memory>
#include <new>

#include "cli/CliErrors.h"
#include "cli/CommandLine.h"
#include "cli/Commands.h"
#include "cli/DataFolder.h"
#include "cli/Help.h"
#include "cli/HostSession.h"
#include "datatypes/UnitConverter.h"
#include "interfaces/Error.h"
#include "platform/Files.h"
#include "platform/Messages.h"

namespace zerbin::cli {
namespace {

// Installs the run's message sink and library for its lifetime, then puts back what the
// process had, so that a run leaves no trace in a process that hosts several.
class ProcessSettings {
public:
    ProcessSettings(std::shared_ptr<MessageSink> sink, const std::filesystem::path& library,
                    UnitSystem units)
        : previousSink_(CurrentMessageSink()),
          previousFolder_(ComponentFolder()),
          previousUnits_(CurrentUnitSystem()) {
        SetMessageSink(std::move(sink));
        // The library is the parent of the component folder; the folder itself need not exist.
        SetComponentFolder(library / "Zerbin");
        SetUnitSystem(units);
    }
    ~ProcessSettings() {
        SetUnitSystem(previousUnits_);
        SetComponentFolder(previousFolder_);
        SetMessageSink(previousSink_);
    }
    ProcessSettings(const ProcessSettings&) = delete;
    ProcessSettings& operator=(const ProcessSettings&) = delete;

private:
    std::shared_ptr<MessageSink> previousSink_;
    std::filesystem::path previousFolder_;
    UnitSystem previousUnits_;
};

int Dispatch(const CommandContext& context) {
    switch (*context.invocation.command) {
        case Command::Types:
            return RunTypes(context);
        case Command::Show:
            return RunShow(context);
        case Command::Image:
            return RunImage(context);
        case Command::Save:
            return RunSave(context);
        case Command::Export:
            return RunExport(context);
        case Command::Load:
            return RunLoad(context);
        case Command::Check:
            return RunCheck(context);
        case Command::Set:
            return RunSet(context);
        case Command::Flat:
            return RunFlat(context);
        case Command::Diff:
            return RunDiff(context);
        case Command::Merge:
            return RunMerge(context);
        case Command::Import:
            return RunImport(context);
        case Command::Reset:
            return RunReset(context);
        case Command::Copy:
            return RunCopy(context);
    }
    return kExitFailure;
}

int RunCommand(const Invocation& invocation, std::ostream& out, std::ostream& err) {
    const std::filesystem::path library =
        std::filesystem::absolute(invocation.library.value_or(ShippedLibrary()));
    auto messages = std::make_shared<StreamMessageSink>(err);
    ProcessSettings settings(messages, library, invocation.units);

    HostSettings host;
    host.library = library;
    host.dictionary =
        ReadDocument(invocation.dictionary.value_or(ShippedDictionary()), "dictionary");
    host.ownerDevice = ReadDocument(invocation.device.value_or(ShippedDevice()), "device document");
    host.shortFloat = invocation.shortFloat;

    return Dispatch(CommandContext{invocation, host, *messages, out, err});
}

}  // namespace

namespace {

// Output that did not reach its file (a full disk, a closed pipe) is a failure like any other:
// a script must not take a cut output for a whole one.
int Checked(int status, std::ostream& out, std::ostream& err) {
    errno = 0;
    out.flush();
    if (out) {
        return status;
    }
    const int code = errno;
    err << kErrorPrefix << "cannot write the output"
        << (code != 0 ? ": " + LowerFirst(std::strerror(code)) : std::string()) << '\n';
    return status == kExitOk ? kExitFailure : status;
}

int Run(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
    try {
        const Invocation invocation = ParseCommandLine(args);
        if (invocation.version) {
            out << VersionText();
            return kExitOk;
        }
        if (invocation.help) {
            out << UsageText();
            return kExitOk;
        }
        if (invocation.commandHelp) {
            out << CommandUsageText(*invocation.command);
            return kExitOk;
        }
        return RunCommand(invocation, out, err);
    } catch (const UsageError& error) {
        err << kErrorPrefix << error.what() << '\n';
        return kExitUsage;
    } catch (const std::exception&) {
        return ReportCurrentFailure(err, {});
    }
}

}  // namespace

int RunZerbin(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
    return Checked(Run(args, out, err), out, err);
}

}  // namespace zerbin::cli
