#include "args/command_line.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include <qo_page/page.h>
#include <qo_page/version.h>

#include "args/arguments.h"
#include "args/command_table.h"
#include "args/edit_script.h"
#include "args/help.h"
#include "args/option_table.h"
#include "io/failure.h"
#include "io/files.h"
#include "io/folders.h"
#include "io/text.h"

namespace cli {

namespace {

// What people call a subcommand as well.
constexpr const char* other_names[][2] = {
    {"grep", "select"},  {"find", "select"},    {"query", "select"}, {"sed", "edit"},
    {"set", "edit"},     {"replace", "edit"},   {"remove", "edit"},  {"lint", "check"},
    {"verify", "check"}, {"validate", "check"}, {"outline", "tree"}, {"unescape", "decode"}};

const CommandRow& find_command(const std::string& name) {
  for (const auto& [other, meant] : other_names) {
    if (name != other) continue;
    throw Failure("there is no subcommand " + quoted(name, 40) + "; did you mean " + meant + "?");
  }
  std::vector<std::string> names;
  for (const CommandRow& row : command_table()) {
    if (name == row.name) return row;
    names.emplace_back(row.name);
  }
  throw Failure("there is no subcommand " + quoted(name, 40) + suggestion(name, names) +
                (suggestion(name, names).empty() ? "; see qo --help" : ""));
}

// Whether an argument that could be a selector can only be a file.
bool names_a_file(const std::string& argument) {
  const auto has = [&argument](char c) { return argument.find(c) != std::string::npos; };
  struct stat status;
  return argument == "-" || (has('/') && !has('[')) || has_page_ending(argument) ||
         stat(argument.c_str(), &status) == 0;
}

// --- What the other arguments are ---

void take_selector(Options& options, std::vector<std::string>& arguments) {
  if (arguments.empty()) throw Failure("which elements? give a selector");
  options.selector = arguments.front();
  arguments.erase(arguments.begin());
}

void place(std::vector<std::string> arguments, Options& options) {
  switch (options.command) {
    case Command::select:
      take_selector(options, arguments);
      break;
    case Command::table:
    case Command::form:
      options.selector = row_of(options.command).name;
      if (!arguments.empty() && !names_a_file(arguments.front())) take_selector(options, arguments);
      break;
    case Command::edit:
      if (options.script.empty()) take_selector(options, arguments);
      break;
    case Command::tree:
    case Command::decode:
      if (arguments.size() > 1) throw Failure("only one FILE can be given");
      break;
    case Command::check:
      break;
  }
  options.files = std::move(arguments);
}

// --- What goes together ---

void require(bool holds, const char* message) {
  if (!holds) throw Failure(message);
}

void check_select(Options& options) {
  const Show show = options.show.value_or(options.squeeze ? Show::text : Show::html);
  options.show = show;
  require(options.fields.empty() || show == Show::json, "--fields needs -j");
  require(!options.csv || show == Show::columns, "--csv needs -a");
  require(!options.raw || !options.squeeze, "--raw and -s exclude each other");
  require(!options.squeeze || show == Show::text || show == Show::columns || show == Show::json,
          "-s needs -t, -a or -j");
  require(!options.host || !options.squeeze, "-s: the library squeezes no texts");
  require(!options.host || !options.line_numbers, "-n: the library keeps no places");
}

void check_in_place(const Options& options) {
  require(
      !options.show_diff,
      "-i and -n exclude each other: -n writes nothing; see the changes first, then write them");
  require(options.recursive || !options.files.empty(), "-i needs files to write to");
  const bool has_input =
      std::find(options.files.begin(), options.files.end(), "-") != options.files.end();
  require(!has_input, "-i: standard input is no file to write to");
  require(options.output.empty(), "-i and -o exclude each other");
}

void check_operations(const Edit& edit) {
  try {
    qo::check_operations(edit.operations);
  } catch (const qo::Error& error) {
    throw Failure(edit.origin + error.what());
  }
}

void check_edit(Options& options) {
  if (!options.script.empty()) {
    require(options.operations.empty(), "-f takes the place of a selector and operations");
    options.edits = read_edit_script(options.script);
  } else {
    require(!options.operations.empty(), "nothing to do: give an operation, such as --text");
    options.edits = {{options.selector, std::move(options.operations), std::move(options.targets),
                      std::string()}};
  }
  for (const Edit& edit : options.edits) check_operations(edit);
  const bool reads_input = options.has_read_input || options.script == "-";
  const bool page_is_input =
      (options.files.empty() && !options.recursive) ||
      std::find(options.files.begin(), options.files.end(), "-") != options.files.end();
  require(!reads_input || !page_is_input,
          "standard input cannot be a page and something else, too");
  if (options.in_place) return check_in_place(options);
  const bool may_be_several = options.recursive || options.files.size() > 1;
  require(!may_be_several || options.output.empty() || options.show_diff,
          "-o takes one page; -i writes each back");
  require(!options.recursive || options.show_diff,
          "-r prints pages one after the other: -i writes each back, -n shows the changes");
}

void check_form(const Options& options) {
  require(options.form_shape != FormShape::urlencoded || !options.compact,
          "--compact is for JSON: not with --urlencoded");
  require(!options.recursive || options.all, "-r needs --all");
  require(!options.host || options.form_shape == FormShape::nested,
          "--host gives the library's values: no --pairs, no --urlencoded");
  require(!options.host || !options.submitter, "--submit: the library presses no buttons");
}

void check(Options& options) {
  require(options.host || !options.strict, "--strict needs --host");
  require(options.host || !options.drop_comments, "--drop-comments needs --host");
  require(options.recursive || (options.include.empty() && options.exclude.empty()),
          "--include and --exclude need -r");
  switch (options.command) {
    case Command::select:
      return check_select(options);
    case Command::edit:
      return check_edit(options);
    case Command::form:
      return check_form(options);
    case Command::tree:
      return require(options.selector.empty() || options.tree_page, "--select needs --html");
    default:
      return;
  }
}

void print(const std::string& text) {
  write_all(STDOUT_FILENO, text, "standard output");
}

// --- The whole ---

std::optional<Options> read_command(const CommandRow& row,
                                    const std::vector<std::string>& arguments) {
  Options options;
  options.command = row.command;
  Arguments read = read_arguments(arguments, options);
  if (read.wants_help) {
    print(command_help(row));
    return std::nullopt;
  }
  place(std::move(read.positional), options);
  check(options);
  return options;
}

}  // namespace

std::optional<Options> read_command_line(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  if (arguments.empty()) throw Failure("which subcommand? see qo --help");
  const std::string& first = arguments[0];
  if (first == "-V" || first == "--version") {
    print("qo " QO_PAGE_VERSION "\n");
  } else if (first == "--dialects") {
    for (const qo::DialectInfo& row : qo::dialects()) {
      print(std::string(row.name) + "\t" + std::string(row.endings) + "\n");
    }
  } else if (first == "-h" || first == "--help" || (first == "help" && arguments.size() == 1)) {
    print(general_help());
  } else if (first == "help") {
    print(command_help(find_command(arguments[1])));
  } else {
    const CommandRow& row = find_command(first);
    try {
      return read_command(row, {arguments.begin() + 1, arguments.end()});
    } catch (const Failure& failure) {
      throw Failure(std::string(row.name) + ": " + failure.what());
    }
  }
  return std::nullopt;
}

}  // namespace cli
