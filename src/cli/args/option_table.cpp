#include "args/option_table.h"

#include <algorithm>
#include <cstdlib>

#include <qo_page/page.h>

#include "io/failure.h"
#include "io/files.h"
#include "io/text.h"

namespace cli {

namespace {

using Values = std::vector<std::string>;
using Kind = qo::Operation::Kind;

constexpr CommandSet in_select = bit_of(Command::select);
constexpr CommandSet in_table = bit_of(Command::table);
constexpr CommandSet in_form = bit_of(Command::form);
constexpr CommandSet in_edit = bit_of(Command::edit);
constexpr CommandSet in_check = bit_of(Command::check);
constexpr CommandSet in_tree = bit_of(Command::tree);
constexpr CommandSet in_decode = bit_of(Command::decode);
constexpr CommandSet in_all =
    in_select | in_table | in_form | in_edit | in_check | in_tree | in_decode;
constexpr CommandSet with_files = in_select | in_table | in_form | in_edit | in_check;
constexpr CommandSet with_host_selector = in_select | in_form | in_tree;

// --- What the options do ---

void show(Options& options, Show what) {
  if (options.show && options.show != what) {
    std::vector<std::string> names;
    for (const OptionRow& row : option_table()) {
      const bool excludes = row.group == Group::show && belongs_to(row, options.command);
      if (excludes) names.push_back(shown_name(row));
    }
    std::string all;
    for (std::size_t i = 0; i < names.size(); ++i) {
      all += (i == 0 ? "" : i + 1 == names.size() ? " and " : ", ") + names[i];
    }
    throw Failure("only one of " + all + " can be given");
  }
  options.show = what;
}

void set_shape(Options& options, FormShape shape) {
  if (options.form_shape != FormShape::nested && options.form_shape != shape) {
    throw Failure("--pairs and --urlencoded exclude each other");
  }
  options.form_shape = shape;
}

void append_list(std::vector<std::string>& list, const std::string& value) {
  for (std::size_t begin = 0; begin <= value.size();) {
    const std::size_t end = find_outside(value, ',', begin);
    list.push_back(value.substr(begin, end - begin));
    begin = end + 1;
  }
}

// Without what only says that a path begins here, or is a folder.
std::string trimmed_glob(std::string glob) {
  if (glob.find('{') != std::string::npos) {
    throw Failure("a glob has no braces; --include and --exclude may be repeated");
  }
  if (glob.compare(0, 2, "./") == 0) glob.erase(0, 2);
  while (glob.size() > 1 && glob.back() == '/') glob.pop_back();
  return glob;
}

void set_threads(Options& options, const Values& values) {
  const std::string& value = values[0];
  const bool is_number = !value.empty() && value.size() < 4 &&
                         value.find_first_not_of("0123456789") == std::string::npos;
  options.threads = is_number ? std::strtoul(value.c_str(), nullptr, 10) : 0;
  if (options.threads == 0)
    throw Failure("--threads: " + quoted(value, 40) + " is no number from 1 to 999");
}

void set_dialect(Options& options, const Values& values) {
  const std::vector<qo::DialectInfo> rows = qo::dialects();
  const bool is_known =
      std::any_of(rows.begin(), rows.end(),
                  [&values](const qo::DialectInfo& row) { return row.name == values[0]; });
  if (!is_known) {
    throw Failure("there is no dialect " + quoted(values[0], 40) + "; qo --dialects lists them");
  }
  options.dialect = values[0];
}

void set_attribute(Options& options, const Values& values) {
  const std::string& value = values[0];
  const std::size_t equals = value.find('=');
  if (equals == std::string::npos) {
    throw Failure("--attr: " + quoted(value, 40) + " has no \"=\"; --bare-attr sets a name alone");
  }
  options.operations.push_back(
      {Kind::set_attribute, value.substr(0, equals), value.substr(equals + 1)});
}

template <Kind kind>
void named(Options& options, const Values& values) {
  options.operations.push_back({kind, values[0], std::string()});
}

template <Kind kind>
void valued(Options& options, const Values& values) {
  options.operations.push_back({kind, std::string(), values[0]});
}

template <Kind kind>
void named_and_valued(Options& options, const Values& values) {
  options.operations.push_back({kind, values[0], values[1]});
}

template <Kind kind>
void from_file(Options& options, const Values& values) {
  std::string text = read_input(values[0]).text;
  drop_byte_order_mark(text);
  options.operations.push_back({kind, std::string(), std::move(text)});
  options.has_read_input = options.has_read_input || values[0] == "-";
}

template <Kind kind>
void bare(Options& options, const Values&) {
  options.operations.push_back({kind, std::string(), std::string()});
}

template <Kind kind>
void moving(Options& options, const Values& values) {
  options.targets.push_back({options.operations.size(), values[0]});
  options.operations.push_back({kind, std::string(), std::string()});
}

qo::Substitution substitution(const char* option, const std::string& expression,
                              const std::string& replacement) {
  try {
    return qo::Substitution(expression, replacement);
  } catch (const qo::Error& error) {
    throw Failure(std::string(option) + ": " + error.what());
  }
}

void substitute_value(Options& options, const Values& values) {
  options.operations.push_back({Kind::substitute_value, values[0], std::string(),
                                substitution("--sub-attr", values[1], values[2])});
}

void substitute_text(Options& options, const Values& values) {
  options.operations.push_back({Kind::substitute_text, std::string(), std::string(),
                                substitution("--sub-text", values[0], values[1])});
}

void substitute_html(Options& options, const Values& values) {
  options.operations.push_back({Kind::substitute_html, std::string(), std::string(),
                                substitution("--sub-html", values[0], values[1])});
}

void set_in_place(Options& options, const Values& values) {
  options.in_place = true;
  if (values.empty()) return;
  options.backup_suffix = values[0];
  const auto is_letter = [](char c) {
    return std::any_of(option_table().begin(), option_table().end(), [c](const OptionRow& row) {
      return row.letter == c && belongs_to(row, Command::edit);
    });
  };
  if (std::all_of(values[0].begin(), values[0].end(), is_letter)) {
    throw Failure("-i" + values[0] + " would keep the old pages as NAME" + values[0] +
                  "; options after -i are written apart");
  }
  if (values[0].find('/') != std::string::npos) throw Failure("-i: a suffix has no \"/\"");
}

}  // namespace

// clang-format off
const std::vector<OptionRow>& option_table() {
  static const std::vector<OptionRow> rows = {
      {'t', "text", "", false, "", in_select, Group::show,
       "Print the text of each match",
       "It is decoded, and without comments, scripts, styles and template code in tags of its own, unless that is the match.",
       [](Options& o, const Values&) { show(o, Show::text); }},
      {'\0', "inner", "", false, "", in_select, Group::show,
       "Print the content of each match, without its own tags", "",
       [](Options& o, const Values&) { show(o, Show::inner); }},
      {'a', "attribute", "NAME[,NAME]", false, "", in_select, Group::show,
       "Print values of each match, with tabs between them; may be repeated",
       "A _NAME_ is an attribute or one of *:text* *:html* *:inner* *:tag* *:line* *:column* *:start* *:end* *:file* and *:path*, a "
       "selector that finds just this element. *SEL@NAME* is that of the first match of a selector below: *h3@:text,a@href*. A match that has none of the attributes gives no line, unless one of "
       "the others is asked for. In a cell, a tab is printed as *\\\\t*, a line break as *\\\\n*, a backslash as *\\\\\\\\*. "
       "An attribute that no match has is told on standard error.",
       [](Options& o, const Values& v) { show(o, Show::columns); append_list(o.columns, v[0]); }},
      {'j', "json", "", false, "", in_select, Group::show,
       "Print a line of JSON for each match",
       "An object with _tag_, _attrs_ (true is an attribute without a value), _text_, _line_ and _column_ (from 1, columns in "
       "bytes), _start_ and _end_ (offsets in bytes of the whole element), and _file_ where the name would be printed. Bytes "
       "that are not UTF-8 become U+FFFD.",
       [](Options& o, const Values&) { show(o, Show::json); }},
      {'c', "count", "", false, "", in_select, Group::show, "Print only the number of matches", "",
       [](Options& o, const Values&) { show(o, Show::count); }},
      {'l', "files-with-matches", "", false, "", in_select, Group::show,
       "Print only the names of files with a match", "",
       [](Options& o, const Values&) { show(o, Show::names); }},
      {'L', "files-without-match", "", false, "", in_select, Group::show,
       "Print only the names of files without a match", "The exit status is 0 when a name was printed.",
       [](Options& o, const Values&) { show(o, Show::names_without); }},
      {'q', "quiet", "", false, "", in_select, Group::show,
       "Print nothing, and stop at the first match; the exit status tells", "",
       [](Options& o, const Values&) { show(o, Show::nothing); }},
      {'\0', "fields", "NAME[,NAME]", false, "", in_select, Group::own,
       "What -j tells, in this order",
       "_html_ and _inner_, the element's bytes and those of its content, and _path_ can be had, too. Texts of elements in "
       "elements repeat each other: on large pages, name what you need.",
       [](Options& o, const Values& v) { append_list(o.fields, v[0]); }},
      {'s', "squeeze", "", false, "", in_select, Group::own,
       "Print texts as a person reads them",
       "White space is one blank, also between blocks and cells, and there is none at the ends. Means *-t* where nothing else "
       "is to be printed.",
       [](Options& o, const Values&) { o.squeeze = true; }},
      {'\0', "raw", "", false, "", in_select, Group::own,
       "Print texts and values as written, not decoded", "",
       [](Options& o, const Values&) { o.raw = true; }},
      {'\0', "csv", "", false, "", in_select | in_table, Group::own,
       "Print commas between cells, and quotes where they are needed", "",
       [](Options& o, const Values&) { o.csv = true; }},
      {'\0', "json", "", false, "", in_table, Group::own,
       "Print a line of JSON for each row",
       "An object with the header's cells as names or, in a table without a header, an array.",
       [](Options& o, const Values&) { o.show = Show::json; }},
      {'n', "line-number", "", false, "", in_select, Group::own,
       "Print LINE: in front of each result", "",
       [](Options& o, const Values&) { o.line_numbers = true; }},
      {'1', "first", "", false, "", in_select | in_table, Group::own,
       "Stop a file at its first match", "",
       [](Options& o, const Values&) { o.first_only = true; }},
      {'0', "null", "", false, "", in_select, Group::own,
       "End each result with a zero byte, not a line break", "A single cell of *-a* is then printed as it is.",
       [](Options& o, const Values&) { o.end_with_nul = true; }},
      {'H', "with-filename", "", false, "", in_select | in_table | in_form, Group::own,
       "Print the file's name with each result",
       "This is the default where there may be several files. With *--csv* it is a cell of its own, with JSON a member; *form* puts it into an object, with the values.",
       [](Options& o, const Values&) { o.with_name = true; }},
      {'\0', "no-filename", "", false, "", in_select | in_table | in_form, Group::own,
       "Never print it", "",
       [](Options& o, const Values&) { o.with_name = false; }},

      {'\0', "all", "", false, "", in_form, Group::own, "Print an array with all forms, not the first form", "",
       [](Options& o, const Values&) { o.all = true; }},
      {'\0', "compact", "", false, "", in_form, Group::own, "Print on one line", "",
       [](Options& o, const Values&) { o.compact = true; }},
      {'\0', "pairs", "", false, "", in_form, Group::own, "Print an array of [name, value]", "",
       [](Options& o, const Values&) { set_shape(o, FormShape::pairs); }},
      {'\0', "urlencoded", "", false, "", in_form, Group::own,
       "Print what a browser would send, as for curl -d", "",
       [](Options& o, const Values&) { set_shape(o, FormShape::urlencoded); }},
      {'\0', "submit", "NAME", false, "", in_form, Group::own, "Press the button of that name",
       "Where several have it, *NAME=VALUE* tells which. Without it, no button's value is sent.",
       [](Options& o, const Values& v) { o.submitter = v[0]; }},

      {'\0', "attr", "NAME=VALUE", false, "", in_edit, Group::operations, "Set an attribute",
       "Quotes stay; a new attribute goes after the last one.", set_attribute},
      {'\0', "bare-attr", "NAME", false, "", in_edit, Group::operations, "Set an attribute without a value", "",
       named<Kind::set_bare_attribute>},
      {'\0', "del-attr", "NAME", false, "", in_edit, Group::operations, "Remove an attribute",
       "In the _NAME_, a *\\** that is not at its start stands for any characters: *on\\**. A *\\** alone is every attribute.",
       named<Kind::remove_attribute>},
      {'\0', "sub-attr", "NAME REGEX REPLACEMENT", false, "", in_edit, Group::operations,
       "Substitute in an attribute's value",
       "_REGEX_ is a regular expression of PCRE2, with the letters and words of Unicode. Every match in the decoded value is "
       "replaced; in _REPLACEMENT_, *$1* and *${name}* are groups, *$0* is the match, *$$* a *$*. Only "
       "what was matched changes, and template code never.",
       substitute_value},
      {'\0', "add-class", "CLASS", false, "", in_edit, Group::operations, "Add a class", "", valued<Kind::add_class>},
      {'\0', "del-class", "CLASS", false, "", in_edit, Group::operations, "Remove a class", "", valued<Kind::remove_class>},
      {'\0', "add-token", "NAME TOKEN", false, "", in_edit, Group::operations,
       "Add a word to an attribute's list, as to rel", "As *--add-class* does to _class_.", named_and_valued<Kind::add_token>},
      {'\0', "del-token", "NAME TOKEN", false, "", in_edit, Group::operations, "Remove a word from an attribute's list", "",
       named_and_valued<Kind::remove_token>},
      {'\0', "rename", "NAME", false, "", in_edit, Group::operations, "Change the element's name", "In both tags.",
       named<Kind::rename>},
      {'\0', "text", "TEXT", false, "", in_edit, Group::operations, "Replace the content by text", "",
       valued<Kind::set_text>},
      {'\0', "text-file", "FILE", false, "", in_edit, Group::operations, "The same, by the text of a file", "",
       from_file<Kind::set_text>},
      {'\0', "html", "MARKUP", false, "", in_edit, Group::operations, "Replace the content by markup", "",
       valued<Kind::set_html>},
      {'\0', "html-file", "FILE", false, "", in_edit, Group::operations, "The same, by the markup of a file", "",
       from_file<Kind::set_html>},
      {'\0', "sub-text", "REGEX REPLACEMENT", false, "", in_edit, Group::operations,
       "Substitute in each text of the element, as --sub-attr does",
       "In each of them alone: a match does not go over a tag. Scripts, styles and comments are left alone, unless they "
       "are the match.",
       substitute_text},
      {'\0', "sub-html", "REGEX MARKUP", false, "", in_edit, Group::operations,
       "Substitute in each text by markup, as a word by a tag",
       "As *--sub-text* does; *$1* is the group as it is written.",
       substitute_html},
      {'\0', "prepend", "MARKUP", false, "", in_edit, Group::operations, "Insert markup at the start of the content", "",
       valued<Kind::prepend>},
      {'\0', "prepend-file", "FILE", false, "", in_edit, Group::operations, "The same, from a file", "",
       from_file<Kind::prepend>},
      {'\0', "append", "MARKUP", false, "", in_edit, Group::operations, "Insert markup at the end of the content", "",
       valued<Kind::append>},
      {'\0', "append-file", "FILE", false, "", in_edit, Group::operations, "The same, from a file", "",
       from_file<Kind::append>},
      {'\0', "before", "MARKUP", false, "", in_edit, Group::operations, "Insert markup right in front of the element", "",
       valued<Kind::insert_before>},
      {'\0', "before-file", "FILE", false, "", in_edit, Group::operations, "The same, from a file", "",
       from_file<Kind::insert_before>},
      {'\0', "after", "MARKUP", false, "", in_edit, Group::operations, "Insert markup right after the element", "",
       valued<Kind::insert_after>},
      {'\0', "after-file", "FILE", false, "", in_edit, Group::operations, "The same, from a file", "",
       from_file<Kind::insert_after>},
      {'\0', "wrap", "MARKUP", false, "", in_edit, Group::operations, "Put the element into markup",
       "Into the innermost first element of it, as of *<div class=\"w\"></div>*.", valued<Kind::wrap>},
      {'\0', "unwrap", "", false, "", in_edit, Group::operations, "Take the tags away, and leave the content", "",
       bare<Kind::unwrap>},
      {'\0', "replace", "MARKUP", false, "", in_edit, Group::operations, "Replace the element itself", "",
       valued<Kind::replace>},
      {'\0', "replace-file", "FILE", false, "", in_edit, Group::operations, "The same, from a file", "",
       from_file<Kind::replace>},
      {'\0', "move-before", "SEL", false, "", in_edit, Group::operations, "Move the element right in front of another one",
       "_SEL_ has to find one element in the page. The element goes there as it is written; other operations are done to it first.",
       moving<Kind::move_before>},
      {'\0', "move-after", "SEL", false, "", in_edit, Group::operations, "Move it right after another one", "",
       moving<Kind::move_after>},
      {'\0', "move-into", "SEL", false, "", in_edit, Group::operations, "Move it to the end of another one's content", "",
       moving<Kind::move_into>},
      {'\0', "remove", "", false, "", in_edit, Group::operations, "Remove the element", "", bare<Kind::remove>},
      {'\0', "remove-line", "", false, "", in_edit, Group::operations,
       "Remove the element, with its line where nothing else is on it", "", bare<Kind::remove_line>},

      {'f', "file", "FILE", false, "", in_edit, Group::own, "Take selectors and operations from a file",
       "Each line is a _SEL_ with its operations, quoted as in a shell. All of them look at the page as it was; operations that contradict each other "
       "are refused. Empty lines, and those that begin with \"# \", are skipped.",
       [](Options& o, const Values& v) { o.script = v[0]; }},
      {'i', "in-place", "SUFFIX", true, "", in_edit, Group::own, "Write the pages back",
       "A page that the edit does not change is not touched; links are followed and the mode stays. At every moment "
       "the file holds all of the old or all of the new page. With several files, *qo* does not wait until the pages are on the "
       "disk: a power cut soon after can bring old pages back or, on a file system that does not write a file before its name, "
       "lose them. With a "
       "_SUFFIX_, the old page stays under its name with _SUFFIX_ after it. A file with several names (hard links) has the new page "
       "under this one alone. Of several files, a last line on standard error tells how many were changed.",
       set_in_place},
      {'1', "first", "", false, "", in_edit, Group::own, "Edit only the first match of each page", "",
       [](Options& o, const Values&) { o.first_only = true; }},
      {'n', "diff", "", false, "", in_edit, Group::own, "Write nothing; show the changes as a diff", "",
       [](Options& o, const Values&) { o.show_diff = true; }},

      {'\0', "bytes", "", false, "", in_check, Group::own, "Tell where the library writes other bytes, too", "",
       [](Options& o, const Values&) { o.bytes = true; }},

      {'b', "blanks", "", false, "", in_tree, Group::own, "Show text that is only white space, too", "",
       [](Options& o, const Values&) { o.blanks = true; }},
      {'\0', "html", "", false, "", in_tree, Group::own, "Write a page that shows the tree, beside other readings",
       "It is self-contained and shows three readings, two at a time, with the differences marked: the tags as *qo* reads them, "
       "the library's, the browser's. Nothing of the source is run or loaded.",
       [](Options& o, const Values&) { o.tree_page = true; }},
      {'\0', "select", "SEL", false, "", in_tree, Group::own, "What to highlight in that page", "",
       [](Options& o, const Values& v) { o.selector = v[0]; }},

      {'r', "recursive", "", false, "", with_files, Group::pages, "Read the pages and templates below folders",
       "Without a _FILE_, below the current folder. Hidden folders and *node_modules* are skipped, links are not followed.",
       [](Options& o, const Values&) { o.recursive = true; }},
      {'\0', "include", "GLOB", false, "", with_files, Group::pages, "With -r: read these files, not those with the usual endings",
       "The _GLOB_ is that of the file's name or, with a \"/\" in it, of the path below the folder. May be repeated.",
       [](Options& o, const Values& v) { o.include.push_back(trimmed_glob(v[0])); }},
      {'\0', "exclude", "GLOB", false, "", with_files, Group::pages, "With -r: skip these files and folders", "May be repeated. Files that are named are read all the same.",
       [](Options& o, const Values& v) { o.exclude.push_back(trimmed_glob(v[0])); }},
      {'\0', "threads", "N", false, "", with_files, Group::pages, "Work on N files at once; default: as many as there are cores",
       "Results come in the order of the files all the same.", set_threads},
      {'\0', "no-templates", "", false, "", in_all, Group::pages, "Read template code like any other text", "",
       [](Options& o, const Values&) { o.dialect = "plain"; }},
      {'\0', "dialect", "NAME", false, "", in_all, Group::pages, "Read the pages as that dialect; default: by their endings",
       "What ends an element, where template code may be and how it is read differ between languages. *qo --dialects* lists them.",
       set_dialect},
      {'\0', "host", "", false, "", with_host_selector | in_decode, Group::pages, "Read as a host process does, with the library",
       "Selectors and values are the library's then, and *decode* replaces what it replaces.",
       [](Options& o, const Values&) { o.host = true; }},
      {'\0', "strict", "", false, "", with_host_selector, Group::pages, "With --host: refuse selectors that do not mean what they look like", "",
       [](Options& o, const Values&) { o.strict = true; }},
      {'\0', "drop-comments", "", false, "", with_host_selector, Group::pages, "With --host: read pages without their comments", "",
       [](Options& o, const Values&) { o.drop_comments = true; }},

      {'o', "output", "FILE", false, "", in_all, Group::common, "Write the results to FILE, once all are there",
       "Without a result it stays as it was. *-* is standard output.",
       [](Options& o, const Values& v) { o.output = v[0] == "-" ? "" : v[0]; }},
      {'\0', "color", "WHEN", false, "auto always never", in_all, Group::common, "Color results: auto, always or never",
       "*auto*, the default, colors them on a terminal.",
       [](Options& o, const Values& v) { o.color = v[0]; }},
      {'h', "help", "", false, "", in_all, Group::common, "Print help", "", nullptr},
  };
  return rows;
}
// clang-format on

std::string shown_name(const OptionRow& option) {
  return option.letter != '\0' ? std::string{'-', option.letter} : std::string("--") + option.name;
}

const char* title_of(Group group) {
  switch (group) {
    case Group::own:
      return "Options";
    case Group::show:
      return "What to print, if not the whole element";
    case Group::operations:
      return "Operations, in any number";
    case Group::pages:
      return "Which pages, and how they are read";
    default:
      return "Common options";
  }
}

}  // namespace cli
