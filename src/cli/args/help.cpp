#include "args/help.h"

#include <algorithm>

#include "args/option_table.h"

namespace cli {

namespace {

constexpr std::size_t name_width = 30;
constexpr std::size_t line_width = 80;

// A name with its explanation after it or, where the name is long, below it, in lines of their own.
std::string entry(const std::string& name, const std::string& explanation) {
  std::string out = "  " + name;
  if (out.size() + 2 > name_width) out += "\n";
  std::size_t column = out.back() == '\n' ? 0 : out.size();
  for (std::size_t begin = 0; begin < explanation.size();) {
    const std::size_t end = std::min(explanation.find(' ', begin), explanation.size());
    if (column > name_width && column + 1 + (end - begin) > line_width) {
      out += "\n";
      column = 0;
    }
    const std::size_t blanks = column < name_width ? name_width - column : 1;
    out.append(blanks, ' ').append(explanation, begin, end - begin);
    column += blanks + (end - begin);
    begin = end + 1;
  }
  return out + "\n";
}

std::string names_of(const OptionRow& option) {
  std::string names = option.letter != '\0' ? std::string{'-', option.letter, ',', ' '} : "    ";
  names += std::string("--") + option.name;
  if (*option.values == '\0') return names;
  return names + (option.may_lack_value ? std::string("[=") + option.values + "]"
                                        : std::string(" ") + option.values);
}

}  // namespace

std::string general_help() {
  std::string out =
      "Searches, edits and checks HTML pages and templates, and leaves what it does not edit as it "
      "is.\n\nusage: qo SUBCOMMAND [OPTION...] ...\n\nSubcommands:\n";
  for (const CommandRow& command : command_table()) out += entry(command.name, command.help);
  out += "\n" + entry("-h, --help", "Print this") + entry("-V, --version", "Print the version") +
         entry("--dialects", "List the dialects of pages, with the endings of their files");
  return out +
         "\nExamples:\n  qo select -a href,:text a page.html\n  qo edit -r -i '[onclick]' "
         "--del-attr "
         "onclick site\n\nqo help SUBCOMMAND tells more; so does the manual page qo(1).\n";
}

std::string command_help(const CommandRow& command) {
  std::string out = std::string(command.help) + ".\n\nusage: qo " + command.name + " [OPTION...] " +
                    command.arguments + "\n";
  for (const Group group :
       {Group::own, Group::show, Group::operations, Group::pages, Group::common}) {
    std::string entries;
    for (const OptionRow& option : option_table()) {
      if (option.group != group || !belongs_to(option, command.command)) continue;
      entries += entry(names_of(option), option.help);
    }
    if (!entries.empty()) out += std::string("\n") + title_of(group) + ":\n" + entries;
  }
  out += "\nExamples:\n";
  for (const Example& example : command.examples) {
    out += std::string("  ") + example.what + ":\n    " + example.command + "\n";
  }
  return out;
}

}  // namespace cli
