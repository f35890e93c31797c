#include <qo_page/selectors/languages.h>

#include <algorithm>

#include <qo_page/base/ascii.h>
#include <qo_page/text/attribute_value.h>

namespace qo::selectors {

namespace {

std::string_view take_subtag(std::string_view& rest) {
  const std::size_t end = std::min(rest.find('-'), rest.size());
  const std::string_view subtag = rest.substr(0, end);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return subtag;
}

// The extended filtering of RFC 4647.
bool is_within(std::string_view range, std::string_view language) {
  if (range.empty() || language.empty()) return range.empty() && language.empty();
  const std::string_view first = take_subtag(range);
  if (first != "*" && !equals_without_case(first, take_subtag(language))) return false;
  if (first == "*") take_subtag(language);
  while (!range.empty()) {
    const std::string_view wanted = take_subtag(range);
    if (wanted == "*") continue;
    for (std::string_view subtag;;) {
      if (language.empty()) return false;
      subtag = take_subtag(language);
      if (equals_without_case(subtag, wanted)) break;
      if (subtag.size() == 1) return false;  // what follows is of another kind
    }
  }
  return true;
}

}  // namespace

const AttributeRecord* language_attribute(const Tree& tree, NodeIndex node) {
  const bool is_html = tree[node].space == Namespace::html;
  const AttributeRecord* const foreign = is_html ? nullptr : tree.find_attribute(node, "xml:lang");
  return foreign != nullptr ? foreign : tree.find_attribute(node, "lang");
}

std::string page_language(const Tree& tree) {
  std::string language, buffer;
  for (NodeIndex node = document_index; node < tree.size(); ++node) {
    if (tree[node].tag != Tag::meta_) continue;
    const AttributeRecord* const content = tree.find_attribute(node, "content");
    if (content == nullptr || !has_value(tree, node, "http-equiv", "content-language")) continue;
    std::string_view value = decoded_value(tree, *content, buffer);
    while (!value.empty() && is_blank(value.front())) value.remove_prefix(1);
    value = value.substr(0, std::min(value.find_first_of(" \t\n\f\r"), value.size()));
    if (!value.empty() && value.find(',') == value.npos) language = value;
  }
  return language;
}

bool matches(const LanguageTest& test, std::string_view language) {
  return std::any_of(test.ranges.begin(), test.ranges.end(),
                     [&](const std::string& range) { return is_within(range, language); });
}

}  // namespace qo::selectors
