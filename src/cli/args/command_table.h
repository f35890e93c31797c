// The subcommands, declared once: command line, help, manual and completions are made from this
// table.

#ifndef QO_CLI_ARGS_COMMAND_TABLE_H
#define QO_CLI_ARGS_COMMAND_TABLE_H

#include <vector>

#include "args/options.h"

namespace cli {

struct Example {
  const char* what;
  const char* command;
};

struct CommandRow {
  Command command;
  const char* name;
  const char* arguments;
  const char* help;  // a sentence without its full stop
  const char* more;  // for the manual, as scdoc
  std::vector<Example> examples;
};

const std::vector<CommandRow>& command_table();

const CommandRow& row_of(Command command);

}  // namespace cli

#endif
