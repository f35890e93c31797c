#include "args/edit_script.h"

#include <utility>

#include "args/arguments.h"
#include "io/failure.h"
#include "io/files.h"
#include "io/text.h"

namespace cli {

namespace {

bool is_comment(std::string_view line) {
  return line.substr(0, 2) == "# " || line == "#";
}

bool is_operation(const OptionRow& option, Command command) {
  return belongs_to(option, command) && option.group == Group::operations;
}

Edit read_edit(std::string_view line) {
  Options options;
  options.command = Command::edit;
  std::vector<std::string> words =
      read_arguments(split_words(line), options, is_operation).positional;
  if (words.size() != 1) throw Failure("a line is one selector with its operations");
  if (options.operations.empty()) throw Failure("nothing to do: give an operation, such as --text");
  return {std::move(words[0]), std::move(options.operations), std::move(options.targets),
          std::string()};
}

}  // namespace

std::vector<std::string> split_words(std::string_view line) {
  std::vector<std::string> words;
  bool is_open = false;  // within a word
  char quote = '\0';
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    const char next = i + 1 < line.size() ? line[i + 1] : '\0';
    if (quote == '\0' && is_blank(c)) {
      is_open = false;
      continue;
    }
    if (!is_open) words.emplace_back();
    is_open = true;
    const bool escapes = c == '\\' && i + 1 < line.size() &&
                         (quote == '\0' || (quote == '"' && (next == '"' || next == '\\')));
    if (escapes) {
      words.back() += next;
      ++i;
    } else if (quote == '\0' && (c == '"' || c == '\'')) {
      quote = c;
    } else if (quote != '\0' && c == quote) {
      quote = '\0';
    } else {
      words.back() += c;
    }
  }
  if (quote != '\0') throw Failure(std::string("there is no ") + quote + " that closes");
  return words;
}

std::vector<Edit> read_edit_script(const std::string& path) {
  Input script = read_input(path);
  drop_byte_order_mark(script.text);
  std::vector<Edit> edits;
  std::string_view rest = script.text;
  for (std::size_t number = 1; !rest.empty(); ++number) {
    std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    if (is_blank(line) || is_comment(line)) continue;
    const std::string origin = script.name + ":" + std::to_string(number) + ": ";
    try {
      edits.push_back(read_edit(line));
      edits.back().origin = origin;
    } catch (const Failure& failure) {
      throw Failure(origin + failure.what());
    }
  }
  return edits;
}

}  // namespace cli
