#include <qo_page/edits/attribute_names.h>

#include <algorithm>

#include <qo_page/base/ascii.h>

namespace qo {

namespace {

bool is_same_letter(char a, char b) {
  return lower(a) == lower(b);
}

}  // namespace

// Of what is between two stars, the first place does.
bool is_named(std::string_view name, std::string_view pattern) {
  if (pattern == "*") return true;
  const std::size_t first = pattern.find('*', 1);
  if (first == pattern.npos) return equals_without_case(name, pattern);
  if (!equals_without_case(name.substr(0, first), pattern.substr(0, first))) return false;
  name.remove_prefix(first);
  pattern.remove_prefix(first + 1);
  for (;;) {
    const std::string_view part = pattern.substr(0, pattern.find('*'));
    if (part.size() == pattern.size()) break;
    const auto found =
        std::search(name.begin(), name.end(), part.begin(), part.end(), is_same_letter);
    if (found == name.end() && !part.empty()) return false;
    name.remove_prefix(static_cast<std::size_t>(found - name.begin()) + part.size());
    pattern.remove_prefix(part.size() + 1);
  }
  return name.size() >= pattern.size() &&
         equals_without_case(name.substr(name.size() - pattern.size()), pattern);
}

}  // namespace qo
