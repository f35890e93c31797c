// Words of a text.

#ifndef QO_PAGE_BASE_WORDS_H
#define QO_PAGE_BASE_WORDS_H

#include <algorithm>
#include <cstddef>
#include <string_view>

#include <qo_page/base/ascii.h>

namespace qo {

constexpr bool is_word_character(char c) {
  return is_letter(c) || is_digit(c) || c == '_';
}

inline bool begins_with(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

inline std::string_view without_leading(std::string_view text, std::string_view characters) {
  return text.substr(std::min(text.find_first_not_of(characters), text.size()));
}

inline std::string_view first_word(std::string_view text) {
  std::size_t length = 0;
  while (length < text.size() && is_word_character(text[length])) ++length;
  return text.substr(0, length);
}

template <std::size_t count>
bool is_one_of(std::string_view word, const std::string_view (&words)[count]) {
  return std::find(words, words + count, word) != words + count;
}

constexpr std::string_view blanks = " \t\r\n\f";

}  // namespace qo

#endif
