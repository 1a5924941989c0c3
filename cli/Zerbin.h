// The zerbin command as a function: what main() runs, and what tests can run in process.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace zerbin::cli {

// Runs one command line (the arguments after the program name) and returns the exit status:
// 0 done, 1 check found messages or the run failed, 2 usage error, 3 a document could not be
// read. Results go to out; messages of the blocks and of zerbin itself go to err.
int RunZerbin(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

}  // namespace zerbin::cli
