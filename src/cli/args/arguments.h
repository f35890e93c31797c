// Reads the arguments of one subcommand by the table of its options.

#ifndef QO_CLI_ARGS_ARGUMENTS_H
#define QO_CLI_ARGS_ARGUMENTS_H

#include <string>
#include <vector>

#include "args/option_table.h"

namespace cli {

struct Arguments {
  std::vector<std::string> positional;
  bool wants_help = false;
};

// Sets what the options say; those may be anywhere among the other arguments, up to a "--".
// `accepts`: whether an option can be given here. Throws Failure, with a hint where a name is near
// that of an option.
Arguments read_arguments(const std::vector<std::string>& arguments, Options& options,
                         bool (*accepts)(const OptionRow& option, Command command) = belongs_to);

// " - did you mean X?", or nothing when no name is near.
std::string suggestion(const std::string& given, const std::vector<std::string>& names);

}  // namespace cli

#endif
