// The zerbin command line: options before the command, the command, then its own arguments
// and options. Parsing checks the shape only; whether a type, attribute or input exists is
// for the commands to find out.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "datatypes/UnitConverter.h"

namespace zerbin::cli {

enum class Command {
    Types,
    Show,
    Image,
    Save,
    Export,
    Load,
    Check,
    Set,
    Flat,
    Diff,
    Merge,
    Import,
    Reset,
    Copy
};

// The name the user types for a command.
std::string CommandName(Command command);

// NAME=VALUE of --set, INPUT=HEX of --ref; split at the first "=".
struct Assignment {
    std::string name;
    std::string value;
};

enum class ExportForm { None, Simulator, Interoperability };

struct Invocation {
    // Before the command.
    std::optional<std::filesystem::path> library;
    std::optional<std::filesystem::path> dictionary;
    std::optional<std::filesystem::path> device;
    bool shortFloat = false;
    UnitSystem units = UnitSystem::SI;
    bool help = false;
    bool version = false;

    // No command with help or version alone.
    std::optional<Command> command;
    // "zerbin COMMAND --help".
    bool commandHelp = false;
    std::vector<std::string> arguments;
    std::vector<Assignment> sets;
    std::vector<Assignment> refs;
    std::optional<int16_t> exportIndex;
    bool intel = false;
    std::optional<std::string> userName;
    std::optional<std::string> key;
    std::optional<double> x;
    std::optional<double> y;
    ExportForm exportForm = ExportForm::None;
    // import: replace the values of blocks PROJECT has already (else they are kept).
    bool update = false;
    bool keep = false;
    // check: the project whose blocks are checked against the library.
    std::optional<std::filesystem::path> project;
};

// Reads the arguments after the program name. Throws UsageError for an unknown command or
// option, a missing or surplus argument, and a value of the wrong form.
Invocation ParseCommandLine(const std::vector<std::string>& args);

}  // namespace zerbin::cli
