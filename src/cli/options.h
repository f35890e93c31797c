// What the command line asks for: one struct for each subcommand.

#ifndef QO_CLI_OPTIONS_H
#define QO_CLI_OPTIONS_H

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <qo_page/edits.h>

namespace cli {

struct CommonOptions {
  std::string color = "auto";  // or "always" or "never"
  std::string output;          // the file that results go to; empty: standard output
  bool templates = true;       // template code is opaque
};

// For what can read a page as a host process would.
struct ReadingOptions : CommonOptions {
  bool host = false;
  bool drop_comments = false;  // this and the next: for hosts only
  bool strict = false;
};

struct SelectOptions : ReadingOptions {
  enum class Show { html, inner, text, attributes, json, count, names, nothing };

  std::string selector;
  std::vector<std::string> files;
  Show show = Show::html;
  std::vector<std::string> attributes;
  std::vector<std::string> fields;  // of JSON lines
  bool raw = false;                 // texts and values as written
  bool first_only = false;
  bool end_with_nul = false;
  bool with_name = false;  // each result has the file's name in front
};

struct FormOptions : ReadingOptions {
  std::string selector = "form";
  std::string file = "-";
  bool all = false;
  bool compact = false;
};

struct EditOptions : CommonOptions {
  std::string selector;
  std::vector<std::string> files;
  std::vector<qo::Operation> operations;  // in the order in which they were given
  bool in_place = false;
  std::string backup_suffix;
  bool show_diff = false;
};

struct CheckOptions : CommonOptions {
  std::vector<std::string> files;
  bool bytes = false;  // tell as well where the library would write other bytes
};

struct TreeOptions : ReadingOptions {
  std::string file = "-";
  bool html = false;
  std::string selector;
  bool blanks = false;  // show text nodes that are nothing but white space
};

struct DecodeOptions : ReadingOptions {
  std::string file = "-";
};

using Options =
    std::variant<SelectOptions, FormOptions, EditOptions, CheckOptions, TreeOptions, DecodeOptions>;

// Null when the command line asked for help or the version only, which were then printed. Throws
// Failure.
std::optional<Options> read_command_line(int argc, char** argv);

}  // namespace cli

#endif
