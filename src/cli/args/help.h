// The help of the tool, made from the tables of subcommands and options.

#ifndef QO_CLI_ARGS_HELP_H
#define QO_CLI_ARGS_HELP_H

#include <string>

#include "args/command_table.h"

namespace cli {

std::string general_help();
std::string command_help(const CommandRow& command);

}  // namespace cli

#endif
