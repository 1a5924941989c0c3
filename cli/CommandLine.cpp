#include "cli/CommandLine.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <string_view>
#include <system_error>
#include <utility>

#include "base/MMain.h"
#include "cli/CliErrors.h"

namespace zerbin::cli {
namespace {

enum class Opt {
    Library,
    Dictionary,
    Device,
    ShortFloat,
    Units,
    Help,
    Version,
    Set,
    Ref,
    ExportIndex,
    Intel,
    UserName,
    X,
    Y,
    Key,
    Sim,
    Interop,
    Update,
    Keep,
    Project,
};

struct OptionInfo {
    Opt id;
    std::string_view name;
    bool takesValue;
};

constexpr std::array kOptions{
    OptionInfo{Opt::Library, "--library", true},
    OptionInfo{Opt::Dictionary, "--dictionary", true},
    OptionInfo{Opt::Device, "--device", true},
    OptionInfo{Opt::ShortFloat, "--short-float", false},
    OptionInfo{Opt::Units, "--units", true},
    OptionInfo{Opt::Help, "--help", false},
    OptionInfo{Opt::Help, "-h", false},
    OptionInfo{Opt::Version, "--version", false},
    OptionInfo{Opt::Set, "--set", true},
    OptionInfo{Opt::Ref, "--ref", true},
    OptionInfo{Opt::ExportIndex, "--export-index", true},
    OptionInfo{Opt::Intel, "--intel", false},
    OptionInfo{Opt::UserName, "--user-name", true},
    OptionInfo{Opt::X, "--x", true},
    OptionInfo{Opt::Y, "--y", true},
    OptionInfo{Opt::Key, "--key", true},
    OptionInfo{Opt::Sim, "--sim", false},
    OptionInfo{Opt::Interop, "--interop", false},
    OptionInfo{Opt::Update, "--update", false},
    OptionInfo{Opt::Keep, "--keep", false},
    OptionInfo{Opt::Project, "--project", true},
};

struct CommandInfo {
    Command command;
    std::string_view name;
    std::vector<Opt> options;
    // What the positional arguments are, for the hints; empty when the command takes none.
    std::string_view argumentName;
    std::size_t minArguments;
    std::size_t maxArguments;
};

constexpr std::size_t kAny = static_cast<std::size_t>(-1);

const std::vector<CommandInfo>& Commands() {
    static const std::vector<CommandInfo> commands{
        {Command::Types, "types", {}, "", 0, 0},
        {Command::Show, "show", {}, "a block type", 1, 1},
        {Command::Image,
         "image",
         {Opt::Set, Opt::Ref, Opt::ExportIndex, Opt::Intel},
         "a block type",
         1,
         1},
        {Command::Save,
         "save",
         {Opt::Set, Opt::Ref, Opt::UserName, Opt::X, Opt::Y, Opt::ExportIndex},
         "a block type",
         1,
         1},
        {Command::Export,
         "export",
         {Opt::Set, Opt::UserName, Opt::Key, Opt::Sim, Opt::Interop},
         "a block type",
         1,
         1},
        {Command::Load, "load", {Opt::Intel}, "a project file", 1, 1},
        {Command::Check, "check", {Opt::Project}, "block types", 0, kAny},
        {Command::Set, "set", {}, "PROJECT BLOCK NAME=VALUE...", 3, kAny},
        {Command::Flat, "flat", {}, "a project file", 1, 1},
        {Command::Diff, "diff", {}, "two project files", 2, 2},
        {Command::Merge, "merge", {}, "BASE OURS THEIRS", 3, 3},
        {Command::Import, "import", {Opt::Update, Opt::Keep}, "PROJECT FROM", 2, 2},
        {Command::Reset, "reset", {}, "a project file", 1, kAny},
        {Command::Copy, "copy", {}, "PROJECT FROM_BLOCK TO_BLOCK...", 3, kAny},
    };
    return commands;
}

const CommandInfo* FindCommand(std::string_view name) {
    for (const CommandInfo& info : Commands()) {
        if (info.name == name) {
            return &info;
        }
    }
    return nullptr;
}

const CommandInfo& InfoOf(Command command) {
    for (const CommandInfo& info : Commands()) {
        if (info.command == command) {
            return info;
        }
    }
    throw std::logic_error("command without an entry");
}

const OptionInfo* FindOption(std::string_view name) {
    for (const OptionInfo& info : kOptions) {
        if (info.name == name) {
            return &info;
        }
    }
    return nullptr;
}

bool IsOptionToken(const std::string& token) {
    return token.size() > 1 && token[0] == '-';
}

// Walks the arguments, handing out option values from "--name VALUE" or "--name=VALUE".
class Cursor {
public:
    explicit Cursor(const std::vector<std::string>& args) : args_(args) {}

    bool AtEnd() const { return next_ >= args_.size(); }
    const std::string& Peek() const { return args_[next_]; }
    std::string Take() { return args_[next_++]; }

    std::string Value(const std::string& option, std::optional<std::string>& inlineValue) {
        if (inlineValue) {
            return *std::exchange(inlineValue, std::nullopt);
        }
        if (AtEnd()) {
            throw UsageError("option '" + option + "' expects an argument");
        }
        return Take();
    }

private:
    const std::vector<std::string>& args_;
    std::size_t next_ = 0;
};

std::string Hint(const std::optional<Command>& command) {
    return command ? " (try 'zerbin " + CommandName(*command) + " --help')"
                   : std::string(" (try 'zerbin --help')");
}

Assignment SplitAssignment(const std::string& option, const std::string& form,
                           const std::string& text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) {
        throw UsageError(option + " expects " + form + ", found '" + text + "'");
    }
    return Assignment{text.substr(0, equals), text.substr(equals + 1)};
}

// Reference digits go into the image as they stand, so they must be hexadecimal already;
// they are upper-cased to match the rest of the image.
Assignment ParseReference(const std::string& text) {
    Assignment ref = SplitAssignment("--ref", "INPUT=HEX", text);
    const bool hex =
        !ref.value.empty() && std::all_of(ref.value.begin(), ref.value.end(),
                                          [](unsigned char c) { return std::isxdigit(c) != 0; });
    if (!hex) {
        throw UsageError("--ref expects hexadecimal digits for '" + ref.name + "', found '" +
                         ref.value + "'");
    }
    ref.value = UpperCase(std::move(ref.value));
    return ref;
}

int16_t ParseExportIndex(const std::string& text) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc() || end != text.data() + text.size() ||
        value < INT16_MIN || value > INT16_MAX) {
        throw UsageError("--export-index expects a whole number from -32768 to 32767, found '" +
                         text + "'");
    }
    return static_cast<int16_t>(value);
}

// Canvas positions are typed by people with either decimal separator.
double ParseCoordinate(const std::string& option, const std::string& text) {
    std::string digits = text;
    std::replace(digits.begin(), digits.end(), ',', '.');
    double value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (digits.empty() || error != std::errc() || end != digits.data() + digits.size() ||
        !std::isfinite(value)) {
        throw UsageError(option + " expects a number, found '" + text + "'");
    }
    return value;
}

UnitSystem ParseUnits(const std::string& text) {
    if (text == "si") {
        return UnitSystem::SI;
    }
    if (text == "us") {
        return UnitSystem::US;
    }
    throw UsageError("--units expects 'si' or 'us', found '" + text + "'");
}

void ApplyOption(const OptionInfo& info, std::optional<std::string>& inlineValue, Cursor& cursor,
                 Invocation& result) {
    const std::string name(info.name);
    if (!info.takesValue && inlineValue) {
        throw UsageError("option '" + name + "' takes no argument");
    }
    auto value = [&] { return cursor.Value(name, inlineValue); };
    switch (info.id) {
        case Opt::Library:
            result.library = value();
            break;
        case Opt::Dictionary:
            result.dictionary = value();
            break;
        case Opt::Device:
            result.device = value();
            break;
        case Opt::ShortFloat:
            result.shortFloat = true;
            break;
        case Opt::Units:
            result.units = ParseUnits(value());
            break;
        case Opt::Help:
            (result.command ? result.commandHelp : result.help) = true;
            break;
        case Opt::Version:
            result.version = true;
            break;
        case Opt::Set:
            result.sets.push_back(SplitAssignment(name, "NAME=VALUE", value()));
            break;
        case Opt::Ref:
            result.refs.push_back(ParseReference(value()));
            break;
        case Opt::ExportIndex:
            result.exportIndex = ParseExportIndex(value());
            break;
        case Opt::Intel:
            result.intel = true;
            break;
        case Opt::UserName:
            result.userName = value();
            break;
        case Opt::X:
            result.x = ParseCoordinate(name, value());
            break;
        case Opt::Y:
            result.y = ParseCoordinate(name, value());
            break;
        case Opt::Key:
            result.key = value();
            break;
        case Opt::Sim:
        case Opt::Interop: {
            const ExportForm form =
                info.id == Opt::Sim ? ExportForm::Simulator : ExportForm::Interoperability;
            if (result.exportForm != ExportForm::None && result.exportForm != form) {
                throw UsageError("--sim and --interop exclude each other");
            }
            result.exportForm = form;
            break;
        }
        case Opt::Project:
            result.project = value();
            break;
        case Opt::Update:
        case Opt::Keep:
            (info.id == Opt::Update ? result.update : result.keep) = true;
            if (result.update && result.keep) {
                throw UsageError("--update and --keep exclude each other");
            }
            break;
    }
}

// The options allowed before the command.
bool IsGlobal(Opt id) {
    switch (id) {
        case Opt::Library:
        case Opt::Dictionary:
        case Opt::Device:
        case Opt::ShortFloat:
        case Opt::Units:
        case Opt::Help:
        case Opt::Version:
            return true;
        default:
            return false;
    }
}

void CheckArguments(const CommandInfo& info, const Invocation& result) {
    const std::size_t count = result.arguments.size();
    if (count < info.minArguments) {
        throw UsageError("'" + std::string(info.name) + "' expects " +
                         std::string(info.argumentName) + Hint(info.command));
    }
    if (count > info.maxArguments) {
        throw UsageError("unexpected argument '" + result.arguments[info.maxArguments] + "'" +
                         Hint(info.command));
    }
    if (info.command == Command::Check && result.project && count > 0) {
        throw UsageError("'check --project' checks the project's blocks and takes no block types" +
                         Hint(info.command));
    }
    if (info.command == Command::Export && result.exportForm == ExportForm::None) {
        throw UsageError("'export' needs --sim or --interop");
    }
}

}  // namespace

std::string CommandName(Command command) {
    return std::string(InfoOf(command).name);
}

Invocation ParseCommandLine(const std::vector<std::string>& args) {
    Invocation result;
    Cursor cursor(args);
    const CommandInfo* command = nullptr;
    bool optionsEnded = false;

    while (!cursor.AtEnd()) {
        const std::string token = cursor.Take();
        if (!optionsEnded && token == "--") {
            optionsEnded = true;
            continue;
        }
        if (optionsEnded || !IsOptionToken(token)) {
            if (command == nullptr) {
                command = FindCommand(token);
                if (command == nullptr) {
                    throw UsageError("unknown command '" + token + "'" + Hint(std::nullopt));
                }
                result.command = command->command;
            } else {
                result.arguments.push_back(token);
            }
            continue;
        }

        const std::size_t equals = token.find('=');
        const std::string name = token.substr(0, equals);
        std::optional<std::string> inlineValue;
        if (equals != std::string::npos) {
            inlineValue = token.substr(equals + 1);
        }
        const OptionInfo* info = FindOption(name);
        const bool allowed =
            info != nullptr &&
            (command == nullptr ? IsGlobal(info->id)
                                : info->id == Opt::Help ||
                                      std::find(command->options.begin(), command->options.end(),
                                                info->id) != command->options.end());
        if (!allowed) {
            const std::string where =
                command == nullptr ? "" : " for '" + std::string(command->name) + "'";
            throw UsageError("unknown option '" + name + "'" + where + Hint(result.command));
        }
        ApplyOption(*info, inlineValue, cursor, result);
        // Help and version answer at once, whatever else stands on the line.
        if (result.help || result.version || result.commandHelp) {
            return result;
        }
    }

    if (command == nullptr) {
        throw UsageError("no command given" + Hint(std::nullopt));
    }
    CheckArguments(*command, result);
    return result;
}

}  // namespace zerbin::cli
