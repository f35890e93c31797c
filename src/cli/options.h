// What the command line asks for: one struct for each subcommand.

#ifndef QO_CLI_OPTIONS_H
#define QO_CLI_OPTIONS_H

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace cli {

struct CommonOptions {
  std::string color = "auto";  // or "always" or "never"
  std::string output;          // the file that results go to; empty: standard output
  bool drop_comments = false;
};

struct SelectOptions : CommonOptions {
  enum class Show { html, inner, text, attributes, json, count, names, nothing };

  std::string selector;
  std::vector<std::string> files;
  Show show = Show::html;
  std::vector<std::string> attributes;
  bool strict = false;
  bool first_only = false;
  bool end_with_nul = false;
  bool with_name = false;  // each result has the file's name in front
};

struct FormOptions : CommonOptions {
  std::string selector = "form";
  std::string file = "-";
  bool strict = false;
  bool all = false;
  bool compact = false;
};

struct EditOperation {
  enum class Kind {
    set_attribute,
    set_bare_attribute,
    delete_attribute,
    add_class,
    delete_class,
    set_text,
    set_html,
    replace,
    insert_before,
    insert_after,
    remove
  };

  Kind kind;
  std::string name;   // of an attribute
  std::string value;  // of an attribute, else what the operation works with
};

struct EditOptions : CommonOptions {
  std::string selector;
  std::vector<std::string> files;
  std::vector<EditOperation> operations;  // in the order in which they were given
  bool strict = false;
  bool in_place = false;
  std::string backup_suffix;
  bool show_diff = false;
  bool allow_rewrite = false;
};

struct CheckOptions : CommonOptions {
  std::vector<std::string> files;
};

struct TreeOptions : CommonOptions {
  std::string file = "-";
  bool html = false;
  std::string selector;
  bool strict = false;
  bool blanks = false;  // show text nodes that are nothing but white space
};

struct DecodeOptions : CommonOptions {
  std::string file = "-";
};

using Options =
    std::variant<SelectOptions, FormOptions, EditOptions, CheckOptions, TreeOptions, DecodeOptions>;

// Null when the command line asked for help or the version only, which were then printed. Throws
// Failure.
std::optional<Options> read_command_line(int argc, char** argv);

}  // namespace cli

#endif
