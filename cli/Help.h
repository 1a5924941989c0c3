// The texts of "zerbin --help", "zerbin COMMAND --help" and "zerbin --version".
#pragma once

#include <string>

#include "cli/CommandLine.h"

namespace zerbin::cli {

std::string UsageText();
std::string CommandUsageText(Command command);
std::string VersionText();

}  // namespace zerbin::cli
