// Characters as the HTML standard classes them.

#ifndef QO_PAGE_BASE_ASCII_H
#define QO_PAGE_BASE_ASCII_H

#include <string>
#include <string_view>

namespace qo {

constexpr bool is_blank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\f' || c == '\r';
}

constexpr bool is_letter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

constexpr bool is_digit(char c) {
  return c >= '0' && c <= '9';
}

constexpr char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

constexpr bool equals_without_case(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i] != b[i] && lower(a[i]) != lower(b[i])) return false;
  }
  return true;
}

inline std::string lower(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = lower(c);
  return out;
}

}  // namespace qo

#endif
