// The command line, and lines of a script that are written like it.

#ifndef QO_CLI_ARGS_COMMAND_LINE_H
#define QO_CLI_ARGS_COMMAND_LINE_H

#include <optional>

#include "args/options.h"

namespace cli {

// Null when the command line asked for help or the version only, which were then printed. Throws
// Failure.
std::optional<Options> read_command_line(int argc, char** argv);

}  // namespace cli

#endif
