// Makes the manual and the completions from the tables of subcommands and options.
// usage: qo_generate bash | zsh | fish | manual TEMPLATE

#include <cctype>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>
#include <vector>

#include "args/command_table.h"
#include "args/option_table.h"
#include "io/failure.h"
#include "io/files.h"

namespace cli {

namespace {

constexpr Group groups_of_command[] = {Group::own, Group::show, Group::operations};

std::vector<const OptionRow*> options_of(Command command) {
  std::vector<const OptionRow*> options;
  for (const OptionRow& option : option_table()) {
    if (belongs_to(option, command)) options.push_back(&option);
  }
  return options;
}

bool takes_value(const OptionRow& option) {
  return *option.values != '\0';
}

bool takes_file(const OptionRow& option) {
  return std::strcmp(option.values, "FILE") == 0;
}

std::string long_name(const OptionRow& option) {
  return std::string("--") + option.name;
}

// The text with `before` in front of each of some characters.
std::string with_escapes(const std::string& text, const char* characters, const char* before) {
  std::string out;
  for (const char c : text) {
    if (std::strchr(characters, c) != nullptr) out += before;
    out += c;
  }
  return out;
}

std::string in_single_quotes(const std::string& text) {
  std::string out = "'";
  for (const char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return out + "'";
}

std::string joined(const std::vector<std::string>& words, const char* between) {
  std::string out;
  for (const std::string& word : words) out += (out.empty() ? "" : between) + word;
  return out;
}

// --- Completions ---

std::vector<std::string> names_of(const std::vector<const OptionRow*>& options,
                                  bool (*counts)(const OptionRow&)) {
  std::vector<std::string> names;
  for (const OptionRow* option : options) {
    if (!counts(*option)) continue;
    if (option->letter != '\0') names.push_back({'-', option->letter});
    names.push_back(long_name(*option));
  }
  return names;
}

std::string bash_completion() {
  std::vector<std::string> commands;
  std::string cases, values;
  const auto is_any = [](const OptionRow&) { return true; };
  const auto has_free_value = [](const OptionRow& option) {
    return takes_value(option) && !takes_file(option) && !option.may_lack_value &&
           *option.choices == '\0';
  };
  for (const CommandRow& row : command_table()) {
    const std::vector<const OptionRow*> options = options_of(row.command);
    const std::string name = row.name;
    commands.push_back(name);
    cases += "    " + name + ") options=\"" + joined(names_of(options, is_any), " ") + "\" ;;\n";
    for (const std::string& option : names_of(options, has_free_value)) {
      values += (values.empty() ? "" : " | ") + name + "," + option;
    }
  }
  std::string choices;
  for (const OptionRow& option : option_table()) {
    if (*option.choices == '\0') continue;
    choices += "    *," + long_name(option) + ") COMPREPLY=($(compgen -W \"" + option.choices +
               "\" -- \"$current\")) && return ;;\n";
  }
  return "# bash completion for qo(1)\n\n_qo() {\n"
         "  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} "
         "command=\"\" word\n"
         "  for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n    case $word in\n      " +
         joined(commands, " | ") +
         ") command=$word && break ;;\n    esac\n  done\n\n  local options\n  case $command in\n" +
         cases + "    *) options=\"-h --help -V --version --dialects help " +
         joined(commands, " ") + "\" ;;\n  esac\n\n  case $command,$previous in\n" + choices +
         "    " + values +
         ") return ;;\n  esac\n"
         "  if [[ -z $command || $current == -* ]]; then\n"
         "    COMPREPLY=($(compgen -W \"$options\" -- \"$current\"))\n  else\n"
         "    compopt -o filenames 2> /dev/null\n    COMPREPLY=($(compgen -f -- \"$current\"))\n  "
         "fi\n}\n"
         "complete -F _qo qo\n";
}

std::string zsh_option(const OptionRow& option) {
  const char* const joint = option.may_lack_value ? "-" : "";
  const char* const equals = option.may_lack_value ? "=-" : "";
  std::string what = "[" + with_escapes(option.help, "[]", "\\") + "]";
  if (takes_value(option)) {
    std::string action = takes_file(option) ? "_files" : "";
    if (*option.choices != '\0') action = "(" + std::string(option.choices) + ")";
    what += (option.may_lack_value ? "::" : ":") + with_escapes(option.values, "[]:", "\\") + ":" +
            action;
  }
  if (option.letter == '\0') return "'*'" + long_name(option) + equals + in_single_quotes(what);
  return std::string("'*'{-") + option.letter + joint + "," + long_name(option) + equals + "}" +
         in_single_quotes(what);
}

std::string zsh_completion() {
  std::string described, cases;
  for (const CommandRow& row : command_table()) {
    described +=
        std::string("      ") + in_single_quotes(std::string(row.name) + ":" + row.help) + "\n";
    cases += std::string("    ") + row.name + ")\n      _arguments -s \\\n";
    for (const OptionRow* option : options_of(row.command)) {
      cases += "        " + zsh_option(*option) + " \\\n";
    }
    cases += "        '*:file:_files'\n      ;;\n";
  }
  return "#compdef qo\n# zsh completion for qo(1)\n\n_qo() {\n  if (( CURRENT == 2 )); then\n"
         "    local -a commands\n    commands=(\n" +
         described +
         "    )\n    _describe command commands\n"
         "    _arguments '(- *)'{-h,--help}'[Print help]' '(- *)'{-V,--version}'[Print the "
         "version]' '(- *)--dialects[List the dialects of pages]'\n"
         "    return\n  fi\n\n  local command=$words[2]\n  shift words\n  (( CURRENT-- ))\n"
         "  case $command in\n" +
         cases + "  esac\n}\n\n_qo \"$@\"\n";
}

std::string fish_completion() {
  std::vector<std::string> commands;
  for (const CommandRow& row : command_table()) commands.emplace_back(row.name);
  std::string out =
      "# fish completion for qo(1)\n\nset -l commands " + joined(commands, " ") + "\n\n";
  const std::string first = "complete -c qo -n \"not __fish_seen_subcommand_from $commands\" ";
  out += first + "-f\n" + first + "-s h -l help -d \"Print help\"\n" + first +
         "-s V -l version -d \"Print the version\"\n" + first +
         "-l dialects -d \"List the dialects of pages\"\n";
  for (const CommandRow& row : command_table()) {
    out += first + "-a " + row.name + " -d " + in_single_quotes(row.help) + "\n";
  }
  for (const CommandRow& row : command_table()) {
    out += "\n";
    for (const OptionRow* option : options_of(row.command)) {
      out += std::string("complete -c qo -n \"__fish_seen_subcommand_from ") + row.name + "\"";
      if (option->letter != '\0') out += std::string(" -s ") + option->letter;
      out += std::string(" -l ") + option->name;
      if (*option->choices != '\0')
        out += " -x -a " + in_single_quotes(option->choices);
      else if (takes_file(*option))
        out += " -r -F";
      else if (takes_value(*option) && !option->may_lack_value)
        out += " -x";
      out += " -d " + in_single_quotes(option->help) + "\n";
    }
  }
  return out;
}

// --- The manual ---

std::string plain(const std::string& text) {
  return with_escapes(text, "_*\\", "\\");
}

// The words in capitals are what the user puts there.
std::string underlined(const std::string& text) {
  std::string out;
  bool is_open = false;
  for (const char c : text + '\n') {
    const bool is_capital = std::isupper(static_cast<unsigned char>(c)) != 0;
    if (is_capital != is_open) out += '_';
    is_open = is_capital;
    if (c != '\n') out += c;
  }
  return out;
}

std::string indented(const std::string& paragraphs, const std::string& tabs) {
  std::string out = tabs;
  for (std::size_t i = 0; i < paragraphs.size(); ++i) {
    out += paragraphs[i];
    if (paragraphs[i] == '\n' && i + 1 < paragraphs.size() && paragraphs[i + 1] != '\n')
      out += tabs;
  }
  return out + "\n";
}

std::string sentences(const char* help, const char* more) {
  const std::string first = plain(help) + ".";
  return *more == '\0' ? first : first + " " + more;
}

std::string manual_entry(const OptionRow& option, const std::string& tabs) {
  const std::string values = underlined(option.values);
  std::string names;
  if (option.letter != '\0') {
    names = std::string("*-") + option.letter + "*" +
            (option.may_lack_value ? "[" + values + "]" : std::string()) + ", ";
  }
  names += "*" + long_name(option) + "*";
  if (takes_value(option)) names += option.may_lack_value ? "[=" + values + "]" : " " + values;
  return "\n" + tabs + names + "\n" + indented(sentences(option.help, option.more), tabs + "\t");
}

std::string manual_synopsis() {
  std::string out;
  for (const CommandRow& row : command_table()) {
    out += std::string("*qo ") + row.name + "* [_options_] " + underlined(row.arguments) + "++\n";
  }
  return out +
         "*qo help* [_subcommand_]++\n*qo* *-h* | *--help* | *-V* | *--version* | *--dialects*\n";
}

std::string manual_commands() {
  std::string out;
  for (const CommandRow& row : command_table()) {
    out += std::string(out.empty() ? "" : "\n") + "*" + row.name + "* " +
           underlined(row.arguments) + "\n" + indented(sentences(row.help, row.more), "\t");
    for (const Group group : groups_of_command) {
      for (const OptionRow* option : options_of(row.command)) {
        if (option->group == group) out += manual_entry(*option, "\t");
      }
    }
  }
  return out;
}

// "" for all subcommands.
std::string commands_with(const OptionRow& option) {
  std::vector<std::string> names;
  for (const CommandRow& row : command_table()) {
    if (belongs_to(option, row.command)) names.push_back("*" + std::string(row.name) + "*");
  }
  return names.size() == command_table().size() ? std::string() : " (" + joined(names, ", ") + ")";
}

std::string manual_options(Group group) {
  std::string out;
  for (const OptionRow& option : option_table()) {
    if (option.group != group) continue;
    std::string entry = manual_entry(option, "");
    entry.insert(entry.size() - 1, commands_with(option));
    out += entry.substr(out.empty() ? 1 : 0);
  }
  return out;
}

std::string manual_examples() {
  std::string out;
  for (const CommandRow& row : command_table()) {
    for (const Example& example : row.examples) {
      out += std::string(out.empty() ? "" : "\n") + plain(example.what) + ":\n\n\t" +
             plain(example.command) + "\n";
    }
  }
  return out;
}

void replace(std::string& text, const std::string& mark, const std::string& by) {
  const std::size_t at = text.find(mark);
  if (at == std::string::npos) throw Failure("there is no " + mark);
  text.replace(at, mark.size(), by);
}

std::string manual(const std::string& path) {
  std::string text = read_input(path).text;
  replace(text, "@SYNOPSIS@\n", manual_synopsis());
  replace(text, "@SUBCOMMANDS@\n", manual_commands());
  replace(text, "@PAGES@\n", manual_options(Group::pages));
  replace(text, "@COMMON@\n", manual_options(Group::common));
  replace(text, "@EXAMPLES@\n", manual_examples());
  return text;
}

std::string generated(const std::string& what, const char* path) {
  if (what == "bash") return bash_completion();
  if (what == "zsh") return zsh_completion();
  if (what == "fish") return fish_completion();
  if (what == "manual" && path != nullptr) return manual(path);
  throw Failure("usage: qo_generate bash | zsh | fish | manual TEMPLATE");
}

}  // namespace

}  // namespace cli

int main(int argc, char** argv) {
  try {
    const std::string text = cli::generated(argc > 1 ? argv[1] : "", argc > 2 ? argv[2] : nullptr);
    return std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0 ? 1 : 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 2;
  }
}
