#include <qo_page/selectors/reader.h>

#include <cstdint>

#include <qo_page/base/ascii.h>
#include <qo_page/selector.h>

namespace qo::selectors {

namespace {

constexpr std::uint32_t replacement = 0xFFFD;

bool starts_name(char c) {
  return is_letter(c) || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}

int hex_value(char c) {
  if (is_digit(c)) return c - '0';
  const char small = lower(c);
  return small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

bool is_character(std::uint32_t code) {
  return code != 0 && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
}

void append_utf8(std::string& out, std::uint32_t code) {
  const auto put = [&out](std::uint32_t byte) { out += static_cast<char>(byte); };
  if (code < 0x80) return put(code);
  if (code < 0x800) {
    put(0xC0 | (code >> 6));
  } else if (code < 0x10000) {
    put(0xE0 | (code >> 12));
    put(0x80 | ((code >> 6) & 0x3F));
  } else {
    put(0xF0 | (code >> 18));
    put(0x80 | ((code >> 12) & 0x3F));
    put(0x80 | ((code >> 6) & 0x3F));
  }
  put(0x80 | (code & 0x3F));
}

bool is_continuation(char c) {
  return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

}  // namespace

bool Reader::take(std::string_view expected) {
  if (text_.compare(offset_, expected.size(), expected) != 0) return false;
  offset_ += expected.size();
  return true;
}

void Reader::expect(std::string_view expected, const std::string& what) {
  if (!take(expected)) fail("expected " + what + ", not " + found());
}

void Reader::skip_comments() {
  while (peek() == '/' && peek(1) == '*') {
    const std::size_t end = text_.find("*/", offset_ + 2);
    if (end == text_.npos) fail("this comment has no end");
    offset_ = end + 2;
  }
}

bool Reader::skip_blanks() {
  bool any = false;
  for (skip_comments(); is_blank(peek()); skip_comments()) {
    any = true;
    skip();
  }
  return any;
}

bool Reader::starts_escape(std::size_t ahead) const {
  const char next = peek(ahead + 1);
  return peek(ahead) == '\\' && offset_ + ahead + 1 < text_.size() && next != '\n' &&
         next != '\r' && next != '\f';
}

bool Reader::starts_name_character(std::size_t ahead) const {
  return starts_name(peek(ahead)) || starts_escape(ahead);
}

bool Reader::at_name() const {
  if (peek() != '-') return starts_name_character(0);
  return peek(1) == '-' || starts_name_character(1);
}

std::string Reader::name(const std::string& what) {
  if (!at_name()) fail("expected " + what + ", not " + found());
  std::string out;
  for (;;) {
    if (starts_escape(0)) {
      append_escape(out);
    } else if (starts_name(peek()) || is_digit(peek()) || peek() == '-') {
      out += peek();
      skip();
    } else {
      return out;
    }
  }
}

// A backslash with up to six hexadecimal digits and one blank, or with any other character.
void Reader::append_escape(std::string& out) {
  skip();
  if (hex_value(peek()) < 0) {
    do {
      out += peek();
      skip();
    } while (is_continuation(peek()));
    return;
  }
  std::uint32_t code = 0;
  for (int i = 0; i < 6 && hex_value(peek()) >= 0; ++i) {
    code = code * 16 + static_cast<std::uint32_t>(hex_value(peek()));
    skip();
  }
  append_utf8(out, is_character(code) ? code : replacement);
  if (peek() == '\r' && peek(1) == '\n') skip();
  if (is_blank(peek())) skip();
}

std::size_t Reader::newline_length() const {
  if (peek() == '\r' && peek(1) == '\n') return 2;
  return peek() == '\n' || peek() == '\r' || peek() == '\f' ? 1 : 0;
}

std::string Reader::quoted() {
  const std::size_t start = offset_;
  const char quote = peek();
  std::string out;
  for (skip(); peek() != quote;) {
    if (at_end()) fail("this string has no end", start);
    if (newline_length() > 0) fail("a string ends in the line in which it begins", start);
    if (starts_escape(0)) {
      append_escape(out);
    } else if (peek() == '\\') {
      skip();  // and the line break after it
      skip(newline_length());
    } else {
      out += peek();
      skip();
    }
  }
  skip();
  return out;
}

std::string Reader::quoted_as_written() {
  const std::size_t start = offset_;
  const char quote = peek();
  for (skip(); peek() != quote;) {
    skip(peek() == '\\' && offset_ + 1 < text_.size() ? 2 : 1);
    if (offset_ >= text_.size()) fail("this string has no end", start);
  }
  skip();
  return text_.substr(start + 1, offset_ - start - 2);
}

std::string Reader::bare(bool as_written) {
  const std::size_t start = offset_;
  std::string out;
  std::size_t size = 0;  // without the blanks at the end
  for (int open = 0; open > 0 || peek() != ')';) {
    if (at_end()) fail("expected \")\" to end the argument", start);
    const char c = peek();
    open += c == '(' ? 1 : c == ')' ? -1 : 0;
    if (c == '\\' && as_written) {
      out += c;
      skip();
      if (at_end()) continue;
    }
    if (starts_escape(0) && !as_written) {
      append_escape(out);
    } else {
      out += peek();
      skip();
    }
    if (!is_blank(c)) size = out.size();
  }
  out.resize(size);
  return out;
}

void Reader::fail(const std::string& message, std::size_t offset) const {
  throw SelectorError(message, offset, text_);
}

void Reader::fail_for_namespace() const {
  if (peek(1) == '|') fail("there are no columns here");
  fail(
      "there are no namespaces here: names are as the source has them, and \"\\:\" takes a colon "
      "into "
      "a name");
}

std::string Reader::found() const {
  if (at_end()) return "the end";
  if (is_blank(peek())) return "a blank";
  std::size_t size = 1;
  while (is_continuation(peek(size))) ++size;
  return "\"" + text_.substr(offset_, size) + "\"";
}

}  // namespace qo::selectors
