#include "io/text.h"

#include <algorithm>
#include <cstdio>

#include <qo_page/utf8.h>

namespace cli {

namespace {

using qo::byte_at;
using qo::sequence_length;

void append_escape(std::string& out, char c) {
  static constexpr std::string_view short_escapes = "\nn\tt\rr";
  const std::size_t found = short_escapes.find(c);
  if (found != std::string_view::npos && found % 2 == 0) {
    out += {'\\', short_escapes[found + 1]};
    return;
  }
  char escape[5];
  std::snprintf(escape, sizeof escape, "\\x%02x", static_cast<unsigned char>(c));
  out += escape;
}

bool is_ascii(char c) {
  return static_cast<unsigned char>(c) < 0x80;
}

bool is_control(char c) {
  return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

// Whether the sequence at `i` is one of the control characters U+0080 to U+009F.
bool is_c1_control(std::string_view text, std::size_t i) {
  return byte_at(text, i) == 0xC2 && byte_at(text, i + 1) < 0xA0;
}

}  // namespace

std::string shown_place(qo::Position position) {
  return std::to_string(position.line) + ":" + std::to_string(position.column);
}

std::string place_of(std::string_view text, std::size_t offset) {
  const std::string_view before = text.substr(0, offset);
  const auto lines = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
  const std::size_t line_start = before.rfind('\n') + 1;  // npos + 1 is 0
  return shown_place({lines + 1, before.size() - line_start + 1});
}

std::string printable(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = is_ascii(text[i]) ? 1 : sequence_length(text, i);
    if (length == 0 || is_control(text[i]) || is_c1_control(text, i)) {
      append_escape(out, text[i++]);
    } else {
      out.append(text, i, length);
      i += length;
    }
  }
  return out;
}

std::string quoted(std::string_view text, std::size_t most) {
  if (text.size() <= most) return '"' + printable(text) + '"';
  while (most > 0 && (byte_at(text, most) & 0xC0) == 0x80) --most;
  return '"' + printable(text.substr(0, most)) + "\"...";
}

std::string_view first_character(std::string_view text) {
  return text.substr(0, std::max<std::size_t>(1, sequence_length(text, 0)));
}

std::string valid_utf8(std::string_view text) {
  std::string out;
  std::size_t begin = 0;  // of what is not yet copied
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = is_ascii(text[i]) ? 1 : sequence_length(text, i);
    if (length == 0) {
      out.append(text, begin, i - begin);
      out += replacement_character;
      begin = i + 1;
    }
    i += std::max<std::size_t>(length, 1);
  }
  out.append(text, begin, text.npos);
  return out;
}

void drop_byte_order_mark(std::string& text) {
  constexpr std::string_view mark = "\xEF\xBB\xBF";
  if (text.compare(0, mark.size(), mark) == 0) text.erase(0, mark.size());
}

std::string lower(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
  return out;
}

bool is_blank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

bool is_blank(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return is_blank(c); });
}

std::size_t find_outside(std::string_view text, char wanted, std::size_t begin) {
  std::string closers;
  for (std::size_t i = begin; i < text.size(); ++i) {
    const char c = text[i];
    const bool in_quotes = !closers.empty() && (closers.back() == '"' || closers.back() == '\'');
    if (c == '\\') {
      ++i;
    } else if (!closers.empty() && c == closers.back()) {
      closers.pop_back();
    } else if (in_quotes) {
      continue;
    } else if (c == wanted && closers.empty()) {
      return i;
    } else if (c == '"' || c == '\'') {
      closers += c;
    } else if (c == '[' || c == '(') {
      closers += c == '[' ? ']' : ')';
    }
  }
  return text.size();
}

}  // namespace cli
