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

// What characters may be to a reader of tags, a bit for each.
class TagCharacters {
 public:
  static constexpr unsigned blank = 1u << 0;
  static constexpr unsigned tag_end = 1u << 1;  // ">"
  static constexpr unsigned slash = 1u << 2;
  static constexpr unsigned equals = 1u << 3;
  static constexpr unsigned double_quote = 1u << 4;
  static constexpr unsigned single_quote = 1u << 5;
  static constexpr unsigned bracket = 1u << 6;  // that may open code of a kind that is not known
  static constexpr unsigned code = 1u << 7;     // that code may begin with

  constexpr void add(std::string_view characters, unsigned bits) {
    for (const char c : characters) {
      bits_[static_cast<unsigned char>(c)] |= static_cast<unsigned char>(bits);
    }
  }
  constexpr bool has(char c, unsigned bits) const {
    return (bits_[static_cast<unsigned char>(c)] & bits) != 0;
  }
  constexpr bool may_begin_code(char c) const { return has(c, code); }

 private:
  unsigned char bits_[256] = {};
};

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

// Words that begin code without a closer of its own: what follows in (...), and a "{" that begins a
// block, as in @if (a < b) {.
struct CodeWords {
  char sigil;  // in front of a name
  unsigned places;
  std::string_view names;  // all of them, separated by blanks
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
  std::string_view starts;   // what the first bytes may be; empty: nothing tells

  // How elements nest.
  SelfClosing self_closing = SelfClosing::never;
  bool slash_ends_values = false;  // "/>" ends a value without quotes
  bool has_case = false;           // names count as they are written: <Link> is not <link>
  bool is_strict = false;          // no end tag may be left out
  bool is_xml = false;             // no element is void, and none holds anything but markup
  bool has_raw_blocks = false;     // what is at the top is a text, but for <template>

  // Which code there is.
  bool has_known_marks = true;  // <?...?>, <%...%>, {{...}}, {%...%}, {#...#} that look like code
  bool is_exact = false;        // the row says all: no other reading is asked
  bool has_text_expressions = false;  // a brace in a text is code, which may hold markup
  bool quotes_keep_code = true;       // class="{x}" is code as class={x} is
  CodeMark marks[most_marks] = {};    // those with an opener
  CodeWords words = {};               // with a sigil

  // What follows from the above.
  TagCharacters characters = {};
  std::string_view text_starts = {};  // what code in texts may begin with, but for "<"

  // Only the second character of a mark tells that it is one.
  constexpr bool needs_second_brace() const { return has_known_marks && text_starts == "{"; }

  // Whether a single brace begins code there.
  constexpr bool has_brace_code(unsigned place) const {
    if (place == code_places::text && has_text_expressions) return true;
    for (const CodeMark& mark : marks) {
      if (mark.open == "{" && mark.not_before.empty() && (mark.places & place) != 0) return true;
    }
    return false;
  }

  // Whether it has any code at all.
  constexpr bool has_code() const {
    return has_known_marks || !marks[0].open.empty() || words.sigil != '\0';
  }
};

// Whether a list of words, separated by blanks, has that one.
bool has_word(std::string_view words, std::string_view wanted);

// The dialect of pages that nothing else is known of.
const Dialect& html_dialect();

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
