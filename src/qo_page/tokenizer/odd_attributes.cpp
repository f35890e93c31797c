#include <qo_page/tokenizer/odd_attributes.h>

#include <algorithm>
#include <string>

#include <qo_page/base/shortened.h>
#include <qo_page/base/words.h>
#include <qo_page/page.h>
#include <qo_page/template/template_code.h>

namespace qo {

namespace {

bool has_outside_code(std::string_view text, std::string_view characters, const Dialect& dialect) {
  if (text.find_first_of(characters) == std::string_view::npos) return false;
  CodeScanner code(text, dialect);
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t end = code.end_of(i, CodeScanner::Place::tag);
    if (end == 0 && characters.find(text[i]) != std::string_view::npos) return true;
    i = std::max(i + 1, end);
  }
  return false;
}

// What a value or name that is cut short by a quote or blank within code has.
bool may_open_code(std::string_view text, const Dialect& dialect) {
  return has_outside_code(text, "<{[\\", dialect);
}

// A value without quotes: <CODE name="x">, or \"x\" in a string of a program.
bool begins_oddly(std::string_view value, const Dialect& dialect) {
  return begins_with(value, "\\\"") ||
         (begins_with(value, "<") && has_outside_code(value, "<", dialect));
}

}  // namespace

void check_attributes(std::string_view source, const Token& tag, const Dialect& dialect) {
  bool in_doubt = false;
  for (const AttributeToken& attribute : tag.attributes) {
    const std::string_view name = attribute.name.in(source);
    const std::string_view value = attribute.value.in(source);
    const bool opens_in_value = attribute.quote == 0 && begins_oddly(value, dialect);
    const bool is_odd = has_outside_code(name, "<", dialect) || opens_in_value ||
                        (in_doubt && has_outside_code(name, "\"'", dialect));
    if (is_odd) {
      throw Error("template code of an unknown kind may be in the tag, at " +
                      shortened(opens_in_value ? value : name),
                  tag.extent.begin);
    }
    in_doubt = in_doubt || may_open_code(name, dialect) || may_open_code(value, dialect);
  }
}

}  // namespace qo
