#include <qo_page/text/escape.h>

#include <qo_page/base/ascii.h>
#include <qo_page/decode.h>
#include <qo_page/template/template_code.h>

namespace qo {

namespace {

// Calls `on_code` with each piece of template code, and `on_character` with the offset of each
// character outside.
template <class OnCode, class OnCharacter>
void visit(std::string_view text, CodeScanner::Place place, const Dialect& dialect, OnCode on_code,
           OnCharacter on_character) {
  CodeScanner code(text, dialect);
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t end = code.end_of(i, place);
    if (end == 0) {
      on_character(i++);
    } else {
      on_code(text.substr(i, end - i));
      i = end;
    }
  }
}

// The text with `special` characters, and each "&" that would begin a reference, as references.
std::string escaped(std::string_view text, char special, DecodeMode mode, CodeScanner::Place place,
                    const Dialect& dialect) {
  std::string out;
  visit(
      text, place, dialect, [&out](std::string_view code) { out += code; },
      [&](std::size_t i) {
        const char c = text[i];
        if (c == '&' && reference_length(text, i, mode) != 0) {
          out += "&amp;";
        } else if ((c == '{' || c == '}') && dialect.has_brace_code(place_bit(place))) {
          out += c == '{' ? "&#123;" : "&#125;";
        } else if (c != special || c == '\0') {
          out += c;
        } else {
          out += c == '<' ? "&lt;" : c == '"' ? "&quot;" : "&#39;";
        }
      });
  return out;
}

}  // namespace

std::string escaped_value(std::string_view text, char quote, const Dialect& dialect) {
  const auto place = quote == '\0' ? CodeScanner::Place::unquoted : CodeScanner::Place::quoted;
  return escaped(text, quote, DecodeMode::attribute, place, dialect);
}

std::string escaped_text(std::string_view text, const Dialect& dialect) {
  return escaped(text, '<', DecodeMode::text, CodeScanner::Place::fragment, dialect);
}

char quote_for(std::string_view text, char preferred, const Dialect& dialect) {
  bool has_double = false;
  bool has_single = false;
  visit(
      text, CodeScanner::Place::quoted, dialect,
      [&](std::string_view code) {
        has_double = has_double || code.find('"') != std::string_view::npos;
        has_single = has_single || code.find('\'') != std::string_view::npos;
      },
      [](std::size_t) {});
  if (has_double == has_single) return preferred;
  return has_double ? '\'' : '"';
}

bool fits_without_quotes(std::string_view text) {
  if (text.empty()) return false;
  for (const char c : text) {
    if (is_blank(c) || std::string_view("\"'=<>`{").find(c) != std::string_view::npos) return false;
  }
  return true;
}

}  // namespace qo
