#include <qo_page/selectors/languages.h>

#include <algorithm>

#include <qo_html/qo_html_walk.h>

#include <qo_page/base/ascii.h>
#include <qo_page/selectors/attribute_match.h>
#include <qo_page/text/node_text.h>

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

bool is_telephone(const Node& node) {
  return node.name == Tag::input_ && has_value(node, "type", "tel");
}

bool has_written_direction(const Node& node) {
  return has_value(node, "dir", "ltr") || has_value(node, "dir", "rtl") ||
         has_value(node, "dir", "auto");
}

enum class Direction { unknown, ltr, rtl };

// That of the first letter that has one.
Direction direction_of(std::string_view text) {
  static const Pattern any("[\\p{bc:L}\\p{bc:R}\\p{bc:AL}]"), rtl("\\A[\\p{bc:R}\\p{bc:AL}]");
  PatternBudget budget(text.size());
  const std::size_t first = any.find(text, budget);
  if (first == std::string_view::npos) return Direction::unknown;
  return rtl.find(text.substr(first, 4), budget) == 0 ? Direction::rtl : Direction::ltr;
}

Direction direction_of_value(const Node& input) {
  const Attribute* value = find_attribute(input, "value");
  std::string buffer;
  return value == nullptr ? Direction::ltr : direction_of(value_of(*value, buffer));
}

// Whether the text of an element does not count for the elements around it.
bool is_passed_over(const Node& node) {
  return is_hidden(node) || has_direction(node) || node.name == Tag::textarea_;
}

Direction direction_of_text(const Node& node) {
  TreeWalk walk(const_cast<Node*>(&node));
  std::string text;
  while (const _qo_html* below = walk.next()) {
    const Node& found = *as_node(below);
    if (found.isText) {
      text.clear();
      text += characters_of(found);
      const Direction direction = direction_of(text);
      if (direction != Direction::unknown) return direction;
    } else if (&found != &node && is_passed_over(found)) {
      walk.skip_children();
    }
  }
  return Direction::unknown;
}

}  // namespace

const Attribute* language_attribute(const Node& node) {
  const Attribute* foreign = node.space == Space::html ? nullptr : find_attribute(node, "xml:lang");
  return foreign != nullptr ? foreign : find_attribute(node, "lang");
}

std::string page_language(const Node& document) {
  std::string language, buffer;
  TreeWalk walk(const_cast<Node*>(&document));
  while (const _qo_html* found = walk.next()) {
    const Node& node = *as_node(found);
    if (node.name != Tag::meta_ || !has_value(node, "http-equiv", "content-language")) continue;
    const Attribute* content = find_attribute(node, "content");
    std::string_view value = content == nullptr ? "" : value_of(*content, buffer);
    while (!value.empty() && is_blank(value.front())) value.remove_prefix(1);
    value = value.substr(0, std::min(value.find_first_of(" \t\n\f\r"), value.size()));
    if (!value.empty() && value.find(',') == value.npos) language = value;
  }
  return language;
}

bool matches(const LanguageTest& test, const std::string& language) {
  return std::any_of(test.ranges.begin(), test.ranges.end(),
                     [&](const std::string& range) { return is_within(range, language); });
}

bool has_direction(const Node& node) {
  return node.space == Space::html &&
         (has_written_direction(node) || node.name == Tag::bdi_ || is_telephone(node));
}

bool is_rtl(const Node& node) {
  if (has_value(node, "dir", "ltr")) return false;
  if (has_value(node, "dir", "rtl")) return true;
  if (is_telephone(node) && !has_written_direction(node)) return false;
  const Direction told =
      node.name == Tag::input_ ? direction_of_value(node) : direction_of_text(node);
  return told == Direction::rtl;
}

}  // namespace qo::selectors
