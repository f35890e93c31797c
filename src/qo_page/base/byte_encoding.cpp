#include <qo_page/base/byte_encoding.h>

#include <algorithm>
#include <string>

#include <qo_page/base/ascii.h>
#include <qo_page/base/words.h>

namespace qo {

namespace {

constexpr std::size_t npos = std::string_view::npos;

constexpr std::size_t sample_length = 1024;  // of a text, that tells its encoding

// Begins each stretch that is not ASCII, whatever the page says of itself.
struct EscapeRow {
  std::string_view sequence, encoding;
};
constexpr EscapeRow escapes[] = {{"\x1B$)C", "ISO-2022-KR"}, {"\x1B$)A", "ISO-2022-CN"},
                                 {"\x1B$)G", "ISO-2022-CN"}, {"\x1B$B", "ISO-2022-JP"},
                                 {"\x1B$@", "ISO-2022-JP"},  {"\x1B$(", "ISO-2022-JP"},
                                 {"\x1B(J", "ISO-2022-JP"},  {"\x1B(I", "ISO-2022-JP"}};

// Most pages have these marks for something else: they count only where the page names the
// encoding.
struct DeclaredRow {
  std::string_view label, mark, encoding;
};
constexpr DeclaredRow declared[] = {{"hz-gb-2312", "~{", "HZ"}, {"utf-7", "+", "UTF-7"}};

// Whether every second byte of the beginning is zero, and the others are not.
bool has_zeros_at(std::string_view text, std::size_t remainder) {
  const std::size_t length = std::min(text.size(), sample_length) & ~std::size_t{1};
  for (std::size_t i = 0; i < length; ++i) {
    if ((text[i] == '\0') != (i % 2 == remainder)) return false;
  }
  return length >= 4;
}

bool is_utf16(std::string_view text) {
  const std::string_view mark = text.substr(0, 2);
  return mark == "\xFF\xFE" || mark == "\xFE\xFF" || has_zeros_at(text, 0) || has_zeros_at(text, 1);
}

std::string_view escaped_encoding(std::string_view text) {
  for (std::size_t at = text.find('\x1B'); at != npos; at = text.find('\x1B', at + 1)) {
    for (const EscapeRow& row : escapes) {
      if (begins_with(text.substr(at), row.sequence)) return row.encoding;
    }
  }
  return {};
}

bool declares(std::string_view sample, std::string_view label) {
  constexpr std::string_view key = "charset";
  for (std::size_t at = sample.find(key); at != npos; at = sample.find(key, at + 1)) {
    const std::string_view value = without_leading(sample.substr(at + key.size()), "= \t\r\n\"'");
    if (begins_with(value, label)) return true;
  }
  return false;
}

std::string_view declared_encoding(std::string_view text) {
  const std::string sample = lower(text.substr(0, sample_length));
  for (const DeclaredRow& row : declared) {
    if (declares(sample, row.label) && text.find(row.mark) != npos) return row.encoding;
  }
  return {};
}

}  // namespace

std::string_view encoding_beyond_ascii(std::string_view text) {
  if (is_utf16(text)) return "UTF-16";
  const std::string_view encoding = escaped_encoding(text);
  return encoding.empty() ? declared_encoding(text) : encoding;
}

}  // namespace qo
