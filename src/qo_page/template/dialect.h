// The languages that pages are written in: each a row of one table.

#ifndef QO_PAGE_TEMPLATE_DIALECT_H
#define QO_PAGE_TEMPLATE_DIALECT_H

#include <cstddef>
#include <string_view>

#include <qo_page/template/code_syntax.h>

namespace qo {

// Where code may be.
namespace code_places {
constexpr unsigned text = 1u << 0;      // also that of title and textarea
constexpr unsigned tag = 1u << 1;       // in a tag, as a name, in one, or between attributes
constexpr unsigned unquoted = 1u << 2;  // in a value without quotes, or as one
constexpr unsigned quoted = 1u << 3;    // in a value with quotes
constexpr unsigned raw = 1u << 4;       // in a script or style
constexpr unsigned anywhere = text | tag | unquoted | quoted | raw;
constexpr unsigned not_raw = anywhere & ~raw;
}  // namespace code_places

// What a piece of code stands for.
enum class CodeUse : unsigned char {
  words,   // what its first words say: {% if x %}
  output,  // text: ${x}
  silent   // nothing: a comment
};

// Code that begins with one text and ends with another.
struct CodeMark {
  std::string_view open;
  std::string_view close;
  unsigned places;
  CodeUse use = CodeUse::words;
  CodeSyntax syntax = no_syntax;
  std::string_view not_before = "";  // characters that the opener is none in front of
};

// Names that begin code without a closer of its own: @if (a < b) {, #foreach($x in $y), $x.y("z").
struct CodeWords {
  char sigil;  // in front of a name
  unsigned places;
  bool is_reference;  // it goes on with ".name", "(...)" and "[...]"; otherwise "(...)" at most
  bool takes_brace;   // after the brackets: a "{" that begins a block, which a "}" ends
  std::string_view names;  // the only ones, separated by blanks; empty: any
  CodeSyntax syntax = no_syntax;
};

// What "/>" does to an element that is not void.
enum class SelfClosing : unsigned char {
  never,   // nothing, as in a browser
  custom,  // ends one whose name HTML does not know
  all      // ends it
};

struct Dialect {
  static constexpr std::size_t most_marks = 8;

  std::string_view name;
  std::string_view endings;  // of files, without the first dot, separated by blanks
  std::string_view starts;   // what the first bytes may be, separated by line breaks

  // How elements nest.
  SelfClosing self_closing = SelfClosing::never;
  bool has_case = false;          // names count as they are written: <Link> is not <link>
  bool is_strict = false;         // no end tag may be left out
  bool is_xml = false;            // no element is void, and none holds anything but markup
  bool has_raw_blocks = false;    // what is at the top is a text, but for <template>
  bool has_front_matter = false;  // between two lines of three dashes at the start

  // Which code there is.
  bool has_known_marks = true;   // <?...?>, <%...%>, {{...}}, {%...%}, {#...#} that look like code
  bool is_exact = false;         // the row says all: no other reading is asked
  bool quotes_keep_code = true;  // class="{x}" is code as class={x} is
  CodeMark marks[most_marks] = {};  // those with an opener
  CodeWords words = {};             // with a sigil

  // Whether it has any code at all.
  constexpr bool has_code() const {
    return has_known_marks || !marks[0].open.empty() || words.sigil != '\0';
  }
};

// The one of that name; null when there is none.
const Dialect* find_dialect(std::string_view name);

// By the ending of a file's name, then by the first bytes; html when neither tells.
const Dialect& dialect_of_file(std::string_view path, std::string_view source);

// All of them, for listing.
struct Dialects {
  const Dialect* first;
  const Dialect* last;
  const Dialect* begin() const { return first; }
  const Dialect* end() const { return last; }
};
Dialects all_dialects();

}  // namespace qo

#endif
