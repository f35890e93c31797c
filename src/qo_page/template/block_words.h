// The words that begin, divide and end the blocks of template code: one table for all languages.

#ifndef QO_PAGE_TEMPLATE_BLOCK_WORDS_H
#define QO_PAGE_TEMPLATE_BLOCK_WORDS_H

#include <string_view>

#include <qo_page/template/code_steps.h>

namespace qo {

namespace languages {

// A word may be one of several.
enum Language : unsigned {
  statement = 1u << 0,  // {% ... %}
  section = 1u << 1,    // {{#...}}
  action = 1u << 2,     // {{ ... }} with words only
  php = 1u << 3,        // whatever the case
  script = 1u << 4,     // Ruby, Elixir and their like
  toolkit = 1u << 5,    // words in capitals
  basic = 1u << 6,      // whatever the case
  brace = 1u << 7,      // after a "}"
  anywhere = 1u << 8,   // in a program: what it is in is a loop
};

}  // namespace languages

struct BlockWord {
  std::string_view word;
  unsigned languages;
  CodeStep::Kind kind;
  unsigned traits = 0;
  std::string_view block = {};  // the name of the block, where it is not the word

  // Traits.
  static constexpr unsigned by_end = 1u << 0;      // "end" alone closes it
  static constexpr unsigned loop = 1u << 1;        // what is in it may be there several times
  static constexpr unsigned is_default = 1u << 2;  // with this branch, one is always taken

  CodeStep step() const {
    return {kind, block.empty() ? word : block, (traits & by_end) != 0, (traits & loop) != 0,
            (traits & is_default) != 0};
  }
};

// Null when the word is none of any of these languages.
const BlockWord* find_block_word(std::string_view word, unsigned languages);

bool is_loop_word(std::string_view word, unsigned languages);

}  // namespace qo

#endif
