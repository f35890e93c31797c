// Brackets of code of a kind that is not known, such as the arrow function in on:click={() =>
// go()}.

#ifndef QO_PAGE_TOKENIZER_BRACKETS_H
#define QO_PAGE_TOKENIZER_BRACKETS_H

#include <cstddef>
#include <string_view>

#include <qo_page/template/template_code.h>

namespace qo {

// A backtick opens a string that may hold code, and counts as a bracket.
constexpr bool opens_bracket(char c) {
  return c == '{' || c == '(' || c == '[' || c == '`';
}

// Where a bracket is closed, with strings, comments and template code skipped.
struct BracketEnd {
  std::size_t end;  // after what closes it; 0 when it is left open, or farther away than some pages
  bool has_blank;   // there are blanks inside, not counting those within template code
  bool has_tag_end;   // the same for ">"
  bool has_name_end;  // the same for "/" and "="
};
BracketEnd bracket_end(std::string_view source, std::size_t at, CodeScanner& code);

// The first bracket in a text that is open at its end; npos when there is none.
std::size_t open_bracket(std::string_view source, std::size_t begin, std::size_t end,
                         CodeScanner& code);

}  // namespace qo

#endif
