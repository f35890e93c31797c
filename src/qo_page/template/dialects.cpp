// The table of dialects, and how a file's own is found.

#include <array>
#include <iterator>
#include <string>

#include <qo_page/base/words.h>
#include <qo_page/template/dialect.h>

namespace qo {

namespace {

using namespace code_places;

// A component's file: elements nest as they are written, and "/>" ends each.
constexpr Dialect component(std::string_view name, std::string_view endings) {
  Dialect row{name, endings, ""};
  row.self_closing = SelfClosing::all;
  row.has_case = true;
  row.has_known_marks = false;
  row.is_exact = true;
  return row;
}

constexpr Dialect vue = [] {
  Dialect row = component("vue", "vue");
  row.is_strict = true;
  row.has_raw_blocks = true;
  row.marks[0] = {"{{", "}}", text, CodeUse::output};
  return row;
}();

constexpr Dialect angular = [] {
  Dialect row = component("angular", "component.html ng.html");
  row.self_closing = SelfClosing::custom;
  row.marks[0] = {"{{", "}}", text, CodeUse::output, escaped_strings};
  row.words = {'@', text, "if else for empty switch case default defer placeholder loading error",
               javascript};
  return row;
}();

constexpr Dialect svelte = [] {
  Dialect row = component("svelte", "svelte");
  row.slash_ends_values = true;
  row.marks[0] = {"{", "}", not_raw, CodeUse::words, javascript};
  return row;
}();

constexpr Dialect astro = [] {
  Dialect row = component("astro", "astro");
  row.slash_ends_values = true;
  row.has_text_expressions = true;
  row.quotes_keep_code = false;
  row.marks[0] = {"{", "}", tag | unquoted, CodeUse::output, javascript};
  return row;
}();

constexpr Dialect xml = [] {
  Dialect row{"xml", "xml xsl xslt svg", ""};
  row.self_closing = SelfClosing::all;
  row.has_case = true;
  row.is_strict = true;
  row.is_xml = true;
  return row;
}();

// Browsers read it as HTML, but for the elements that its authors close.
constexpr Dialect xhtml = [] {
  Dialect row{"xhtml", "xhtml xht", "<?xml"};
  row.self_closing = SelfClosing::all;
  return row;
}();

constexpr Dialect plain = [] {
  Dialect row{"plain", "", ""};
  row.has_known_marks = false;
  return row;
}();

// One more mark beside those that all pages are looked through for.
constexpr Dialect with_mark(std::string_view name, std::string_view endings, CodeMark mark) {
  Dialect row{name, endings, ""};
  row.marks[0] = mark;
  return row;
}

// Marks of a language alone.
constexpr Dialect with_only(std::string_view name, std::string_view endings, CodeMark first,
                            CodeMark second = {}, CodeMark third = {}, CodeMark fourth = {}) {
  Dialect row{name, endings, ""};
  row.has_known_marks = false;
  row.marks[0] = first;
  row.marks[1] = second;
  row.marks[2] = third;
  row.marks[3] = fourth;
  return row;
}

// Its files are often written for other engines, too.
constexpr Dialect smarty = [] {
  Dialect row{"smarty", "tpl", ""};
  row.has_known_marks = false;
  const CodeMark marks[] = {{"{*", "*}", anywhere, CodeUse::silent},
                            {"{#", "#}", not_raw, CodeUse::silent},
                            {"{%", "%}", not_raw},
                            {"{{", "}}", not_raw},
                            {"<?php", "?>", anywhere},
                            {"<?=", "?>", anywhere, CodeUse::output},
                            {"{", "}", anywhere, CodeUse::words, expressions, " \t\r\n\f"}};
  for (std::size_t i = 0; i < std::size(marks); ++i) row.marks[i] = marks[i];
  return row;
}();

constexpr Dialect listed[] = {
    {"html", "html htm shtml dtl", ""},
    plain,
    vue,
    angular,
    svelte,
    astro,
    xhtml,
    xml,
    {"php", "php phtml php5 inc", ""},
    {"erb", "erb rhtml", ""},
    {"ejs", "ejs", ""},
    {"asp", "asp", ""},
    {"aspx", "aspx ascx master", ""},
    {"django", "djhtml", ""},
    {"jinja", "jinja jinja2 j2", ""},
    {"twig", "twig", ""},
    {"nunjucks", "njk nunjucks", ""},
    {"liquid", "liquid", ""},
    {"handlebars", "hbs handlebars", ""},
    {"mustache", "mustache", ""},
    {"go", "tmpl gohtml gotmpl", ""},
    {"blade", "blade.php", ""},
    {"jsp", "jsp jspf jspx tag", ""},
    {"razor", "cshtml razor", ""},
    {"heex", "heex leex eex", ""},
    {"marko", "marko", ""},
    {"freemarker", "ftl ftlh", ""},
    {"velocity", "vm", ""},
    {"mako", "mako", ""},
    {"mason", "mas mhtml", ""},
    {"mojo", "ep", ""},
    with_mark("tt", "tt tt2", {"[%", "%]", anywhere, CodeUse::words}),
    smarty,
    with_only("latte", "latte", {"{*", "*}", anywhere, CodeUse::silent},
              {"{", "}", anywhere, CodeUse::words, expressions, " \t\r\n\f\"'"}),
};

// The characters that texts are looked through for; three at most.
constexpr std::string_view starts_of(const Dialect& row) {
  const bool has_at = row.words.sigil == '@';
  bool has_brace = row.has_known_marks, has_square = false;
  for (const CodeMark& mark : row.marks) {
    has_brace = has_brace || (!mark.open.empty() && mark.open[0] == '{' && (mark.places & text));
    has_square = has_square || (!mark.open.empty() && mark.open[0] == '[');
  }
  if (has_at) return has_brace ? "{@" : "@";
  if (has_square) return has_brace ? "{[" : "[";
  return has_brace ? "{" : "";
}

// With what follows from the rest of the row.
constexpr Dialect completed(Dialect row) {
  TagCharacters characters;
  characters.add(" \t\n\f\r", TagCharacters::blank);
  characters.add(">", TagCharacters::tag_end);
  characters.add("/", TagCharacters::slash);
  characters.add("=", TagCharacters::equals);
  characters.add("\"", TagCharacters::double_quote);
  characters.add("'", TagCharacters::single_quote);
  characters.add("{([`", TagCharacters::bracket);
  if (row.has_known_marks) characters.add("{<", TagCharacters::code);
  for (const CodeMark& mark : row.marks) {
    if (!mark.open.empty()) characters.add(mark.open.substr(0, 1), TagCharacters::code);
  }
  if (row.words.sigil != '\0') {
    characters.add(std::string_view(&row.words.sigil, 1), TagCharacters::code);
  }
  row.characters = characters;
  row.text_starts = starts_of(row);
  return row;
}

constexpr std::size_t count = std::size(listed);

constexpr std::array<Dialect, count> dialects = [] {
  std::array<Dialect, count> made{};
  for (std::size_t i = 0; i < count; ++i) made[i] = completed(listed[i]);
  return made;
}();

// The longest ending that a row has counts: "component.html" before "html".
const Dialect* find_by_ending(std::string_view path) {
  const std::size_t slash = path.find_last_of('/');
  const std::string file = lower(slash == path.npos ? path : path.substr(slash + 1));
  std::string_view name = file;
  for (std::size_t dot; (dot = name.find('.')) != name.npos;) {
    name.remove_prefix(dot + 1);
    for (const Dialect& row : dialects) {
      if (has_word(row.endings, name)) return &row;
    }
  }
  return nullptr;
}

const Dialect* find_by_start(std::string_view source) {
  if (begins_with(source, "\xEF\xBB\xBF")) source.remove_prefix(3);
  for (const Dialect& row : dialects) {
    if (!row.starts.empty() && begins_with(source, row.starts)) return &row;
  }
  return nullptr;
}

}  // namespace

bool has_word(std::string_view words, std::string_view wanted) {
  while (!words.empty()) {
    const std::size_t end = words.find(' ');
    if (words.substr(0, end) == wanted) return true;
    words.remove_prefix(end == words.npos ? words.size() : end + 1);
  }
  return false;
}

const Dialect& html_dialect() {
  return dialects[0];
}

const Dialect* find_dialect(std::string_view name) {
  for (const Dialect& row : dialects) {
    if (row.name == name) return &row;
  }
  return nullptr;
}

const Dialect& dialect_of_file(std::string_view path, std::string_view source) {
  const Dialect* const by_ending = find_by_ending(path);
  const bool is_open = by_ending == nullptr || by_ending == &dialects[0];
  const Dialect* const by_start = is_open ? find_by_start(source) : nullptr;
  if (by_start != nullptr) return *by_start;
  return by_ending == nullptr ? dialects[0] : *by_ending;
}

Dialects all_dialects() {
  return {dialects.data(), dialects.data() + count};
}

}  // namespace qo
