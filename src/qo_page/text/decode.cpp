#include <qo_page/decode.h>

#include <algorithm>
#include <cstring>
#include <iterator>

#include <qo_page/base/ascii.h>

namespace qo {

namespace {

struct NamedReference {
  char name[32];  // without ampersand and semicolon
  char32_t first;
  char32_t second;  // 0 where there is none
  bool bare;        // counts without its semicolon, too
};

constexpr NamedReference named_references[] = {
#include <qo_page/text/references_table.inc>
};

constexpr std::size_t longest_name = sizeof(NamedReference::name) - 1;

constexpr std::size_t longest_bare_name = [] {
  std::size_t longest = 0;
  for (const NamedReference& row : named_references) {
    if (row.bare) longest = std::max(longest, std::string_view(row.name).size());
  }
  return longest;
}();

constexpr char32_t replacement_character = 0xFFFD;
constexpr char32_t last_code_point = 0x10FFFF;

// What 0x80 to 0x9F stand for: authors meant windows-1252. 0 where it has no character.
constexpr char32_t windows_1252[32] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178,
};

struct Reference {
  std::size_t length = 0;  // from the ampersand on; 0 where there is no reference
  char32_t first = 0;
  char32_t second = 0;  // 0 where there is none
};

constexpr bool is_alphanumeric(char c) {
  return is_letter(c) || is_digit(c);
}

constexpr int not_a_digit = 99;

constexpr int digit_value(char c) {
  if (is_digit(c)) return c - '0';
  const char small = lower(c);
  return small >= 'a' && small <= 'f' ? small - 'a' + 10 : not_a_digit;
}

constexpr char32_t corrected(char32_t number) {
  const bool surrogate = number >= 0xD800 && number <= 0xDFFF;
  if (number == 0 || surrogate || number > last_code_point) return replacement_character;
  const bool remapped = number >= 0x80 && number <= 0x9F && windows_1252[number - 0x80] != 0;
  return remapped ? windows_1252[number - 0x80] : number;
}

// `rest` begins with "&#".
Reference numeric_reference(std::string_view rest) {
  const bool hexadecimal = rest.size() > 2 && lower(rest[2]) == 'x';
  const int base = hexadecimal ? 16 : 10;
  const std::size_t begin = hexadecimal ? 3 : 2;
  std::size_t end = begin;
  char32_t number = 0;
  for (; end < rest.size() && digit_value(rest[end]) < base; ++end) {
    const auto digit = static_cast<char32_t>(digit_value(rest[end]));
    number = std::min(number * static_cast<char32_t>(base) + digit, last_code_point + 1);
  }
  if (end == begin) return {};
  if (end < rest.size() && rest[end] == ';') ++end;
  return {end, corrected(number), 0};
}

const NamedReference* find_name(std::string_view name) {
  const auto* found = std::lower_bound(
      std::begin(named_references), std::end(named_references), name,
      [](const NamedReference& row, std::string_view key) { return row.name < key; });
  return found != std::end(named_references) && found->name == name ? found : nullptr;
}

// The longest name that `letters` begin with and that counts without a semicolon.
const NamedReference* find_bare_name(std::string_view letters) {
  for (std::size_t size = std::min(letters.size(), longest_bare_name); size > 0; --size) {
    const NamedReference* row = find_name(letters.substr(0, size));
    if (row != nullptr && row->bare) return row;
  }
  return nullptr;
}

// The letters and digits that `text` begins with, at most one more than a name can have.
std::string_view leading_letters(std::string_view text) {
  const std::size_t limit = std::min(text.size(), longest_name + 1);
  std::size_t size = 0;
  while (size < limit && is_alphanumeric(text[size])) ++size;
  return text.substr(0, size);
}

// `rest` begins with an ampersand.
Reference named_reference(std::string_view rest, DecodeMode mode) {
  const std::string_view letters = leading_letters(rest.substr(1));
  const std::size_t end = 1 + letters.size();
  const char next = end < rest.size() ? rest[end] : '\0';
  if (next == ';') {
    const NamedReference* row = find_name(letters);
    if (row != nullptr) return {end + 1, row->first, row->second};
  }
  const NamedReference* row = find_bare_name(letters);
  if (row == nullptr) return {};
  const std::size_t size = std::strlen(row->name);
  const bool goes_on = size < letters.size() || next == '=';
  if (mode == DecodeMode::attribute && goes_on) return {};
  return {1 + size, row->first, row->second};
}

// `rest` begins with an ampersand.
Reference find_reference(std::string_view rest, DecodeMode mode) {
  const bool numeric = rest.size() > 1 && rest[1] == '#';
  return numeric ? numeric_reference(rest) : named_reference(rest, mode);
}

void append_utf8(std::string& out, char32_t c) {
  const auto trailing = [c](int shift) { return static_cast<char>(0x80 | ((c >> shift) & 0x3F)); };
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += {static_cast<char>(0xC0 | (c >> 6)), trailing(0)};
  } else if (c < 0x10000) {
    out += {static_cast<char>(0xE0 | (c >> 12)), trailing(6), trailing(0)};
  } else {
    out += {static_cast<char>(0xF0 | (c >> 18)), trailing(12), trailing(6), trailing(0)};
  }
}

}  // namespace

std::string decode(std::string_view text, DecodeMode mode) {
  std::string out;
  std::size_t copied = 0;
  for (std::size_t at = text.find('&'); at != std::string_view::npos;) {
    const Reference reference = find_reference(text.substr(at), mode);
    if (reference.length != 0) {
      out += text.substr(copied, at - copied);
      append_utf8(out, reference.first);
      if (reference.second != 0) append_utf8(out, reference.second);
      copied = at + reference.length;
    }
    at = text.find('&', at + std::max<std::size_t>(reference.length, 1));
  }
  return out += text.substr(copied);
}

std::size_t reference_length(std::string_view text, std::size_t offset, DecodeMode mode) {
  return find_reference(text.substr(offset), mode).length;
}

}  // namespace qo
