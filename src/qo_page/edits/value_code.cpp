#include <qo_page/edits/value_code.h>

#include <algorithm>

#include <qo_page/base/ascii.h>
#include <qo_page/base/words.h>
#include <qo_page/error.h>
#include <qo_page/template/template_code.h>

namespace qo {

namespace {

// Whether a list of properties is between two braces: {a: 1}, {"a": 1}, {...a}.
bool is_object(std::string_view braces) {
  const std::string_view inner = without_leading(braces.substr(1), blanks);
  if (begins_with(inner, "...")) return true;
  const bool is_quoted = !inner.empty() && (inner[0] == '"' || inner[0] == '\'');
  const std::size_t name_end = is_quoted ? inner.find(inner[0], 1) + 1 : first_word(inner).size();
  const std::string_view rest =
      without_leading(inner.substr(std::min(name_end, inner.size())), blanks);
  return name_end != 0 && begins_with(rest, ":");
}

}  // namespace

bool is_expression(std::string_view value) {
  if (begins_with(value, "`")) return true;
  if (!begins_with(value, "{") || value.back() != '}' || begins_with(value, "{%")) return false;
  return !begins_with(value, "{{") || is_object(value.substr(1));
}

void check_joins_no_code(std::string_view value, const std::vector<Splice>& splices,
                         const Dialect& dialect, std::size_t place) {
  std::vector<std::size_t> seams;
  std::size_t new_size = 0, old_end = 0;
  for (const Splice& splice : splices) {
    new_size += splice.begin - old_end;
    seams.push_back(new_size);
    new_size += splice.text.size();
    seams.push_back(new_size);
    old_end = splice.end;
  }
  CodeScanner code(value, dialect);
  auto seam = seams.begin();
  for (std::size_t at = code.next_start(0); at < value.size();) {
    const std::size_t end = code.end_of(at, CodeScanner::Place::quoted);
    while (seam != seams.end() && *seam <= at) ++seam;
    if (seam != seams.end() && *seam < end) {
      throw Error("what is on both sides of the edit would together be read as template code",
                  place);
    }
    at = code.next_start(end == 0 ? at + 1 : end);
  }
}

}  // namespace qo
