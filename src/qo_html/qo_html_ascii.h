// Character classification of the default locale, whatever locale the host has set.

#ifndef QO_HTML_ASCII_H
#define QO_HTML_ASCII_H

namespace qo_html_inner {

constexpr bool is_letter_or_digit(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

constexpr bool is_space(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

constexpr char to_lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

}  // namespace qo_html_inner

#endif
