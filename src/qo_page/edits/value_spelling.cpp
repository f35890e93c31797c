#include <qo_page/edits/value_spelling.h>

#include <algorithm>
#include <cstddef>

#include <qo_page/text/decoded_text.h>
#include <qo_page/text/escape.h>

namespace qo {

std::string respelled_value(const SpelledValue& old, const std::string& value, char quote,
                            const Dialect& dialect) {
  const std::string plain = escaped_value(value, quote, dialect);
  const bool has_reference = old.text.find('&') != std::string::npos;
  const bool holds_quote = old.quote != quote && old.text.find(quote) != std::string::npos;
  if (!has_reference || holds_quote) return plain;
  const DecodedText before({old.text, WrittenText::Kind::value, old.quote, dialect});
  const std::string& text = before.text();
  const std::size_t shorter = std::min(text.size(), value.size());
  std::size_t start = 0;
  while (start < shorter && text[start] == value[start]) ++start;
  while (start > 0 && !before.is_uncut(start)) --start;
  std::size_t tail = 0;
  while (start + tail < shorter && text[text.size() - 1 - tail] == value[value.size() - 1 - tail]) {
    ++tail;
  }
  while (tail > 0 && !before.is_uncut(text.size() - tail)) --tail;
  const std::string middle = value.substr(start, value.size() - start - tail);
  const std::string spelled = old.text.substr(0, *before.written_offset(start)) +
                              escaped_value(middle, quote, dialect) +
                              old.text.substr(*before.written_offset(text.size() - tail));
  const DecodedText after({spelled, WrittenText::Kind::value, quote, dialect});
  return after.text() == value ? spelled : plain;
}

}  // namespace qo
