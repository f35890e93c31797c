#include <qo_page/selectors/nth.h>

#include <algorithm>

#include <qo_page/base/ascii.h>

namespace qo::selectors {

namespace {

constexpr std::int64_t most = INT32_MAX;  // larger numbers count as this one

bool takes_word(Reader& reader, std::string_view word) {
  for (std::size_t i = 0; i < word.size(); ++i) {
    if (lower(reader.peek(i)) != word[i]) return false;
  }
  reader.skip(word.size());
  return true;
}

std::int64_t read_sign(Reader& reader) {
  if (reader.take("-")) return -1;
  reader.take("+");
  return 1;
}

std::int64_t read_number(Reader& reader) {
  if (!is_digit(reader.peek())) reader.fail("expected a number, not " + reader.found());
  std::int64_t number = 0;
  for (; is_digit(reader.peek()); reader.skip()) {
    number = std::min(number * 10 + (reader.peek() - '0'), most);
  }
  return number;
}

// What may follow an "n": a sign and a number, with blanks around the sign.
std::int64_t read_offset(Reader& reader) {
  const std::size_t end = reader.offset();
  reader.skip_blanks();
  if (reader.peek() != '+' && reader.peek() != '-') {
    reader.go_to(end);
    return 0;
  }
  const std::int64_t sign = read_sign(reader);
  reader.skip_blanks();
  return sign * read_number(reader);
}

}  // namespace

Nth read_nth(Reader& reader) {
  if (takes_word(reader, "even")) return {2, 0};
  if (takes_word(reader, "odd")) return {2, 1};
  const char next = lower(reader.peek());
  if (!is_digit(next) && next != '+' && next != '-' && next != 'n') {
    reader.fail("expected a position such as 2n+1, odd or 3, not " + reader.found());
  }
  const std::int64_t sign = read_sign(reader);
  const bool has_number = is_digit(reader.peek()) || lower(reader.peek()) != 'n';
  const std::int64_t number = sign * (has_number ? read_number(reader) : 1);
  if (lower(reader.peek()) != 'n') return {0, number};
  reader.skip();
  return {number, read_offset(reader)};
}

}  // namespace qo::selectors
