// The program behind its command line.
#pragma once

#include <string>
#include <vector>

#include "commands/commands.h"

namespace kapdf::tool {

// `words`: the command line without the program's name, UTF-8. Answers the exit status: 0 done, 1 failed, 2 wrong
// usage, 130 stopped by Ctrl-C.
int RunTool(const std::vector<std::string> &words, const Streams &streams);

}  // namespace kapdf::tool
