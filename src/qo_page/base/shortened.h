// Texts in messages.

#ifndef QO_PAGE_BASE_SHORTENED_H
#define QO_PAGE_BASE_SHORTENED_H

#include <string>
#include <string_view>

#include <qo_page/base/ascii.h>

namespace qo {

// The beginning of a text, on one line and in quotes.
inline std::string shortened(std::string_view text) {
  constexpr std::size_t most = 60;
  std::string out("\"");
  for (const char c : text) {
    if (out.size() > most) return out + "...\"";
    if (!is_blank(c)) out += c;
    if (is_blank(c) && out.back() != ' ') out += ' ';
  }
  return out + '"';
}

}  // namespace qo

#endif
