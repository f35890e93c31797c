#include "text.h"

#include <algorithm>
#include <cstdio>

namespace cli {

namespace {

unsigned char byte_at(std::string_view text, std::size_t i) {
  return i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
}

struct LeadByte {  // of a sequence, and what its second byte may be
  unsigned char first, last;
  std::size_t length;
  unsigned char second_first, second_last;
};

constexpr LeadByte lead_bytes[] = {
    {0x00, 0x7F, 1, 0, 0},       {0xC2, 0xDF, 2, 0x80, 0xBF}, {0xE0, 0xE0, 3, 0xA0, 0xBF},
    {0xE1, 0xEC, 3, 0x80, 0xBF}, {0xED, 0xED, 3, 0x80, 0x9F}, {0xEE, 0xEF, 3, 0x80, 0xBF},
    {0xF0, 0xF0, 4, 0x90, 0xBF}, {0xF1, 0xF3, 4, 0x80, 0xBF}, {0xF4, 0xF4, 4, 0x80, 0x8F}};

// The length of the UTF-8 sequence at `i`; 0 when there is none.
std::size_t sequence_length(std::string_view text, std::size_t i) {
  const unsigned char first = byte_at(text, i);
  for (const LeadByte& lead : lead_bytes) {
    if (first < lead.first || first > lead.last) continue;
    if (lead.length == 1) return 1;
    const unsigned char second = byte_at(text, i + 1);
    if (second < lead.second_first || second > lead.second_last) return 0;
    for (std::size_t k = 2; k < lead.length; ++k) {
      if ((byte_at(text, i + k) & 0xC0) != 0x80) return 0;
    }
    return lead.length;
  }
  return 0;
}

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

bool is_control(char c) {
  return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

// Whether the sequence at `i` is one of the control characters U+0080 to U+009F.
bool is_c1_control(std::string_view text, std::size_t i) {
  return byte_at(text, i) == 0xC2 && byte_at(text, i + 1) < 0xA0;
}

}  // namespace

std::string place_of(std::string_view text, std::size_t offset) {
  const std::string_view before = text.substr(0, offset);
  const auto lines = std::count(before.begin(), before.end(), '\n');
  const std::size_t line_start = before.rfind('\n') + 1;  // npos + 1 is 0
  return std::to_string(lines + 1) + ":" + std::to_string(before.size() - line_start + 1);
}

std::string printable(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = sequence_length(text, i);
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
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = sequence_length(text, i);
    if (length == 0) {
      out += replacement_character;
      ++i;
    } else {
      out.append(text, i, length);
      i += length;
    }
  }
  return out;
}

bool is_blank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

bool is_blank(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return is_blank(c); });
}

}  // namespace cli
