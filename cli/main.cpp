// zerbin: the command-line host of the generic application object.
#include <clocale>
#include <iostream>
#include <string>
#include <vector>

#include "cli/Zerbin.h"

int main(int argc, char** argv) {
    // Numbers follow the user's locale, as they do in the tool.
    std::setlocale(LC_ALL, "");
    std::ios::sync_with_stdio(false);
    const std::vector<std::string> args(argv + 1, argv + argc);
    return zerbin::cli::RunZerbin(args, std::cout, std::cerr);
}
