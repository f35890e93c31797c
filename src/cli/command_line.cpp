#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <sstream>
#include <utility>

#include <CLI/CLI.hpp>

#include <qo_html/qo_html_version.h>

#include "arguments.h"
#include "files.h"
#include "options.h"
#include "text.h"

namespace cli {

namespace {

bool has_any(const std::string& text, std::string_view characters) {
  return text.find_first_of(characters) != std::string::npos;
}

bool ends_with(const std::string& text, std::string_view end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// --- Options that subcommands share ---

template <class Value>
CLI::Option* add_positional(CLI::App& command, const char* name, Value& value, const char* help) {
  return command.add_option(name, value, help)->transform(without_guard)->type_name("");
}

// The last of a subcommand's options.
void add_common(CLI::App& command, CommonOptions& options) {
  command.add_option("--color", options.color, "Color results: auto, always or never")
      ->check(CLI::IsMember({"auto", "always", "never"}))
      ->type_name("WHEN");
  command.add_option("-o,--output", options.output, "Write results to FILE, once all are there")
      ->type_name("FILE");
  command.add_flag("!--no-templates", options.templates, "Read template code like any other text");
  for (CLI::Option* option : command.get_options()) {
    if (option->get_items_expected_max() == 0) option->disable_flag_override();  // no --flag=VALUE
  }
}

void add_host(CLI::App& command, ReadingOptions& options) {
  CLI::Option* host =
      command.add_flag("--host", options.host, "Read as a host process does, with the library");
  command.add_flag("--drop-comments", options.drop_comments, "Leave comments out of the page")
      ->needs(host);
}

// What can read as a host and takes a selector.
void add_host_with_selector(CLI::App& command, ReadingOptions& options) {
  add_host(command, options);
  command.add_flag("--strict", options.strict, "Refuse selectors that a hint would be given on")
      ->needs(command.get_option("--host"));
}

void add_selector(CLI::App& command, std::string& selector) {
  add_positional(command, "SEL", selector, "Which elements: a CSS selector")->required();
}

void add_files(CLI::App& command, std::vector<std::string>& files) {
  add_positional(command, "FILE", files, "Pages to read; - or none: standard input");
}

CLI::Option* add_file(CLI::App& command, std::string& file) {
  return add_positional(command, "FILE", file, "The page to read; - or none: standard input");
}

// --- qo select ---

using Show = SelectOptions::Show;

struct ShowFlag {
  const char* names;
  const char* help;
  Show show;
};

constexpr ShowFlag show_flags[] = {
    {"-t,--text", "Print the text of each match", Show::text},
    {"--inner", "Print the content of each match, without its own tags", Show::inner},
    {"-j,--json", "Print a line of JSON for each match", Show::json},
    {"-c,--count", "Print only the number of matches", Show::count},
    {"-l,--files-with-matches", "Print only the names of files with a match", Show::names},
    {"-q,--quiet", "Print nothing; the exit status tells", Show::nothing}};

void add_select(CLI::App& app, SelectOptions& options) {
  CLI::App& command =
      *app.add_subcommand("select", "Print the elements that a selector finds, one a line");
  add_selector(command, options.selector);
  add_files(command, options.files);
  std::vector<CLI::Option*> shows;
  for (const ShowFlag& flag : show_flags) {
    shows.push_back(command.add_flag_callback(
        flag.names, [&options, flag] { options.show = flag.show; }, flag.help));
  }
  shows.push_back(command
                      .add_option_function<std::vector<std::string>>(
                          "-a,--attribute",
                          [&options](const std::vector<std::string>& names) {
                            options.show = Show::attributes;
                            options.attributes = names;
                          },
                          "Print the values of attributes, with tabs between them; may be repeated")
                      ->type_name("NAME[,NAME]")
                      ->delimiter(',')
                      ->allow_extra_args(false));
  for (CLI::Option* show : shows) show->group("What to print, if not the whole element");
  CLI::Option* fields =
      command.add_option("--fields", options.fields, "What -j tells: tag, attrs, text, line, ...")
          ->type_name("NAME[,NAME]")
          ->delimiter(',')
          ->allow_extra_args(false);
  command.add_flag("--raw", options.raw, "Print texts and values as written, not decoded");
  command.add_flag("-1,--first", options.first_only, "Stop a file at its first match");
  command.add_flag("-0,--null", options.end_with_nul, "End each result with a zero byte");
  CLI::Option* with_name =
      command.add_flag("-H,--with-filename")->description("Print the file's name with each");
  CLI::Option* no_name = command.add_flag("--no-filename")->description("Never print it");
  command.final_callback([&options, shows, fields, with_name, no_name] {
    const auto is_given = [](const CLI::Option* show) { return !show->empty(); };
    if (std::count_if(shows.begin(), shows.end(), is_given) > 1) {
      throw Failure("select: only one of -t, --inner, -a, -j, -c, -l and -q can be given");
    }
    if (!fields->empty() && options.show != Show::json) throw Failure("select: --fields needs -j");
    options.with_name = no_name->empty() && (!with_name->empty() || options.files.size() > 1);
  });
  add_host_with_selector(command, options);
  add_common(command, options);
}

// --- qo form ---

bool names_a_file(const std::string& argument) {
  const bool is_path = has_any(argument, "/") && !has_any(argument, "[");
  const bool is_page = ends_with(argument, ".html") || ends_with(argument, ".htm");
  return argument == "-" || is_path || is_page || CLI::ExistingFile(argument).empty();
}

void add_form(CLI::App& app, FormOptions& options) {
  CLI::App& command = *app.add_subcommand("form", "Print the values of a form's controls as JSON");
  CLI::Option* selector = add_positional(command, "SEL", options.selector,
                                         "Which elements to take for forms; default: form");
  CLI::Option* file = add_file(command, options.file);
  command.add_flag("--all", options.all, "Print an array with all forms, not the first form");
  command.add_flag("--compact", options.compact, "Print on one line");
  command.final_callback([&options, selector, file] {
    // A lone argument that can only be a file is one.
    if (!selector->empty() && file->empty() && names_a_file(options.selector)) {
      options.file = std::exchange(options.selector, "form");
    }
  });
  add_host_with_selector(command, options);
  add_common(command, options);
}

// --- qo edit ---

using Kind = qo::Operation::Kind;

struct OperationOption {
  const char* name;
  const char* type;  // of the value; empty: there is none
  const char* help;
  Kind kind;
};

constexpr OperationOption operation_options[] = {
    {"--attr", "NAME=VALUE", "Set an attribute", Kind::set_attribute},
    {"--bare-attr", "NAME", "Set an attribute without a value", Kind::set_bare_attribute},
    {"--del-attr", "NAME", "Remove an attribute", Kind::remove_attribute},
    {"--add-class", "CLASS", "Add a class", Kind::add_class},
    {"--del-class", "CLASS", "Remove a class", Kind::remove_class},
    {"--rename", "NAME", "Change the element's name", Kind::rename},
    {"--text", "TEXT", "Replace the content by text", Kind::set_text},
    {"--html", "MARKUP", "Replace the content by markup", Kind::set_html},
    {"--prepend", "MARKUP", "Insert markup at the start of the content", Kind::prepend},
    {"--append", "MARKUP", "Insert markup at the end of the content", Kind::append},
    {"--before", "MARKUP", "Insert markup in front of the element", Kind::insert_before},
    {"--after", "MARKUP", "Insert markup after the element", Kind::insert_after},
    {"--wrap", "MARKUP", "Put the element into the innermost element of markup", Kind::wrap},
    {"--unwrap", "", "Take the tags away, and leave the content", Kind::unwrap},
    {"--replace", "MARKUP", "Replace the element itself", Kind::replace},
    {"--remove", "", "Remove the element", Kind::remove}};

qo::Operation read_operation(const OperationOption& option, const std::string& value) {
  switch (option.kind) {
    case Kind::set_attribute: {
      const std::size_t equals = value.find('=');
      if (equals == std::string::npos) {
        throw Failure("--attr: \"" + value + "\" has no \"=\"; --bare-attr sets a name alone");
      }
      return {option.kind, value.substr(0, equals), value.substr(equals + 1)};
    }
    case Kind::set_bare_attribute:
    case Kind::remove_attribute:
    case Kind::rename:
      return {option.kind, value, std::string()};
    default:
      return {option.kind, std::string(), value};
  }
}

// The operations in the order in which they are on the command line. Throws Failure when one is
// wrong in itself or contradicts another.
std::vector<qo::Operation> read_operations(const CLI::App& command) {
  std::vector<qo::Operation> operations;
  std::vector<std::string> names;
  std::map<const CLI::Option*, std::size_t> used;
  for (const CLI::Option* given : command.parse_order()) {
    const std::string name = given->get_name();
    for (const OperationOption& option : operation_options) {
      if (name != option.name) continue;
      const bool has_value = *option.type != '\0';
      const std::string value = has_value ? given->results()[used[given]++] : std::string();
      operations.push_back(read_operation(option, value));
      names.push_back(name);
    }
  }
  try {
    qo::check_operations(operations);
  } catch (const qo::Error& error) {
    throw Failure("edit: " + names[error.offset()] + ": " + error.what());
  }
  return operations;
}

void check_in_place(const EditOptions& options) {
  if (options.files.empty() || std::count(options.files.begin(), options.files.end(), "-") != 0) {
    throw Failure("edit: -i needs files to write to");
  }
  if (!options.output.empty()) throw Failure("edit: -i and -o exclude each other");
  if (has_any(options.backup_suffix, "/")) throw Failure("edit: -i: a suffix has no \"/\"");
}

void add_edit(CLI::App& app, EditOptions& options) {
  CLI::App& command = *app.add_subcommand(
      "edit", "Change the elements that a selector finds, and nothing else of the page");
  add_selector(command, options.selector);
  add_files(command, options.files);
  for (const OperationOption& option : operation_options) {
    if (*option.type == '\0') {
      command.add_flag(option.name, option.help)->group("Operations, in any number");
      continue;
    }
    command.add_option(option.name, option.help)
        ->group("Operations, in any number")
        ->type_name(option.type)
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->allow_extra_args(false);
  }
  command.add_flag("-i,--in-place", options.in_place,
                   "Write the pages back; -iSUFFIX keeps each old page under its name + SUFFIX");
  command.add_flag("-n,--diff", options.show_diff, "Write nothing; show the changes as a diff");
  command.final_callback([&options, &command] {
    options.operations = read_operations(command);
    if (options.operations.empty()) {
      throw Failure("edit: nothing to do: give an operation, such as --text");
    }
    if (options.in_place) check_in_place(options);
  });
  add_common(command, options);
}

// --- The rest ---

void add_check(CLI::App& app, CheckOptions& options) {
  CLI::App& command =
      *app.add_subcommand("check", "Tell where a host process reads pages otherwise than qo");
  add_files(command, options.files);
  command.add_flag("--bytes", options.bytes, "Tell where the library writes other bytes, too");
  add_common(command, options);
}

void add_tree(CLI::App& app, TreeOptions& options) {
  CLI::App& command = *app.add_subcommand("tree", "Print an outline of a page's tree");
  add_file(command, options.file);
  command.add_flag("-b,--blanks", options.blanks, "Show text that is only white space, too");
  CLI::Option* html = command.add_flag("--html", options.html,
                                       "Write a page that shows the tree, beside other readings");
  command.add_option("--select", options.selector, "What to highlight in that page")
      ->type_name("SEL")
      ->needs(html);
  add_host_with_selector(command, options);
  add_common(command, options);
}

void add_decode(CLI::App& app, DecodeOptions& options) {
  CLI::App& command = *app.add_subcommand("decode", "Replace character references");
  add_file(command, options.file);
  add_host(command, options);
  add_common(command, options);
}

// --- The whole ---

const CLI::App* find_subcommand(const CLI::App& app, const std::string& name) {
  const std::vector<const CLI::App*> found = app.get_subcommands(
      [&name](const CLI::App* subcommand) { return subcommand->get_name() == name; });
  return found.empty() ? nullptr : found.front();
}

// CLI11's message, on one line.
std::string first_line(std::string message) {
  return message.substr(0, message.find('\n'));
}

}  // namespace

std::optional<Options> read_command_line(int argc, char** argv) {
  CLI::App app("Searches, edits and checks HTML pages, and leaves what it does not edit as it is.",
               "qo");
  app.require_subcommand(1);
  app.set_version_flag("--version", "qo " QO_HTML_VERSION);

  SelectOptions select;
  FormOptions form;
  EditOptions edit;
  CheckOptions check;
  TreeOptions tree;
  DecodeOptions decode;
  add_select(app, select);
  add_form(app, form);
  add_edit(app, edit);
  add_check(app, check);
  add_tree(app, tree);
  add_decode(app, decode);
  app.footer("qo SUBCOMMAND --help tells more; so does the manual page qo(1).\n");

  std::vector<std::string> arguments(argv + 1, argv + argc);
  if (argc > 1 && argv[1][0] != '-') {
    const CLI::App* const command = find_subcommand(app, argv[1]);
    if (command == nullptr) {
      throw Failure("there is no subcommand \"" + std::string(argv[1]) + "\"; see qo --help");
    }
    arguments = known_forms(*command, argc - 2, argv + 2, edit.backup_suffix);
    arguments.insert(arguments.begin(), argv[1]);
  }
  try {
    std::reverse(arguments.begin(), arguments.end());
    app.parse(arguments);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() != 0) throw Failure(first_line(error.what()));
    std::ostringstream text;  // help, or the version
    app.exit(error, text);
    write_all(STDOUT_FILENO, text.str(), "standard output");
    return std::nullopt;
  }
  const std::string name = app.get_subcommands().front()->get_name();
  if (name == "select") return select;
  if (name == "form") return form;
  if (name == "edit") return edit;
  if (name == "check") return check;
  if (name == "tree") return tree;
  return decode;
}

}  // namespace cli
