// The options of all subcommands, declared once: command line, help, manual and completions are
// made from this table.

#ifndef QO_CLI_ARGS_OPTION_TABLE_H
#define QO_CLI_ARGS_OPTION_TABLE_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "args/options.h"

namespace cli {

// What options of a command belong together.
enum class Group { own, show, operations, pages, common };

using CommandSet = unsigned;  // a bit for each command

constexpr CommandSet bit_of(Command command) {
  return 1u << static_cast<unsigned>(command);
}

struct OptionRow {
  char letter;          // '\0': there is none
  const char* name;     // the long one, without dashes
  const char* values;   // names of what follows, with blanks between them; empty: nothing
  bool may_lack_value;  // the value, if any, is joined to the option
  const char* choices;  // what the value can be, with blanks; empty: anything
  CommandSet commands;
  Group group;
  const char* help;  // a sentence without its full stop
  const char* more;  // what the manual says beside it, as scdoc; may be empty
  void (*set)(Options& options, const std::vector<std::string>& values);
};

const std::vector<OptionRow>& option_table();

// "-t", or "--inner" where there is no letter.
std::string shown_name(const OptionRow& option);

// The sentence that headlines a group in help and manual.
const char* title_of(Group group);

inline bool belongs_to(const OptionRow& option, Command command) {
  return (option.commands & bit_of(command)) != 0;
}

}  // namespace cli

#endif
