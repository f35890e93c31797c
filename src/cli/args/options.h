// What the command line asks for.

#ifndef QO_CLI_ARGS_OPTIONS_H
#define QO_CLI_ARGS_OPTIONS_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <qo_page/edits.h>

#include "io/folders.h"

namespace cli {

enum class Command { select, table, form, edit, check, tree, decode };

// What is printed of what was found.
enum class Show { html, inner, text, columns, json, count, names, names_without, nothing };

enum class FormShape { nested, pairs, urlencoded };

// Where an operation moves a node to: what this selector finds in its page.
struct MoveTarget {
  std::size_t operation;  // its index
  std::string selector;
};

// Some operations on what a selector finds.
struct Edit {
  std::string selector;
  std::vector<qo::Operation> operations;  // in the order in which they were given
  std::vector<MoveTarget> targets;
  std::string origin;  // for messages: "FILE:LINE: " where it comes from a file
};

// The members that belong to other commands keep their values.
struct Options : FileChoice {
  Command command = Command::select;

  // --- Where results go ---
  std::string color = "auto";  // or "always" or "never"
  std::string output;          // a file; empty: standard output

  // --- How the files are read ---
  std::size_t threads = 0;  // 0: as many as there are cores
  std::string dialect;      // empty: that of each file
  bool host = false;        // as a host process does; the next two: for hosts only
  bool drop_comments = false;
  bool strict = false;
  std::string selector;  // for tree: what to highlight

  // --- What is printed ---
  std::optional<Show> show;
  std::vector<std::string> columns;  // attributes and pseudo-columns
  std::vector<std::string> fields;   // of JSON lines
  bool raw = false;                  // texts and values as written
  bool squeeze = false;              // as a person reads them
  bool csv = false;
  bool line_numbers = false;
  bool first_only = false;
  bool end_with_nul = false;
  std::optional<bool> with_name;  // each result has the file's name in front; default: of several
  bool all = false;               // forms
  bool compact = false;
  FormShape form_shape = FormShape::nested;
  std::optional<std::string> submitter;
  bool bytes = false;      // tell as well where the library would write other bytes
  bool blanks = false;     // show text nodes that are nothing but white space
  bool tree_page = false;  // a page that shows the tree

  // --- What is changed ---
  std::vector<qo::Operation> operations;
  std::vector<MoveTarget> targets;  // of these
  bool has_read_input = false;      // standard input was something else than a page
  std::string script;               // the file that the edits are in
  std::vector<Edit> edits;          // of the script, or the one of the command line
  bool in_place = false;
  std::string backup_suffix;
  bool show_diff = false;
};

}  // namespace cli

#endif
