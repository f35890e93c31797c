#include <qo_page/text/direction.h>

#include <qo_page/base/pattern.h>
#include <qo_page/text/attribute_value.h>
#include <qo_page/text/node_text.h>

namespace qo {

namespace {

enum class Direction { unknown, ltr, rtl };

bool is_telephone(const Tree& tree, NodeIndex element) {
  return tree[element].tag == Tag::input_ && has_value(tree, element, "type", "tel");
}

bool has_written_direction(const Tree& tree, NodeIndex element) {
  const AttributeRecord* const written = tree.find_attribute(element, "dir");
  if (written == nullptr) return false;
  std::string buffer;
  const std::string_view value = decoded_value(tree, *written, buffer);
  return equals_without_case(value, "ltr") || equals_without_case(value, "rtl") ||
         equals_without_case(value, "auto");
}

// That of the first letter that has one.
Direction direction_of(std::string_view text) {
  static const Pattern any("[\\p{bc:L}\\p{bc:R}\\p{bc:AL}]"), rtl("\\A[\\p{bc:R}\\p{bc:AL}]");
  PatternBudget budget(text.size());
  const std::size_t first = any.find(text, budget);
  if (first == std::string_view::npos) return Direction::unknown;
  return rtl.find(text.substr(first, 4), budget) == 0 ? Direction::rtl : Direction::ltr;
}

Direction direction_of_value(const Tree& tree, NodeIndex input) {
  const AttributeRecord* const value = tree.find_attribute(input, "value");
  std::string buffer;
  return value == nullptr ? Direction::ltr : direction_of(decoded_value(tree, *value, buffer));
}

// Whether the text of a node does not count for the elements around it.
bool is_passed_over(const Tree& tree, NodeIndex node) {
  return is_hidden(tree[node]) || tree[node].tag == Tag::textarea_ ||
         (tree.is_element(node) && has_direction(tree, node));
}

Direction direction_of_text(const Tree& tree, NodeIndex element) {
  for (NodeIndex below = element; below < tree[element].subtree_end;) {
    if (is_text(tree[below])) {
      const Direction direction = direction_of(characters_of(tree, below));
      if (direction != Direction::unknown) return direction;
    }
    const bool is_left_out = below != element && is_passed_over(tree, below);
    below = is_left_out ? tree[below].subtree_end : below + 1;
  }
  return Direction::unknown;
}

}  // namespace

bool has_direction(const Tree& tree, NodeIndex element) {
  return tree[element].space == Namespace::html &&
         (tree[element].tag == Tag::bdi_ || has_written_direction(tree, element) ||
          is_telephone(tree, element));
}

bool is_rtl(const Tree& tree, NodeIndex element) {
  if (has_value(tree, element, "dir", "ltr")) return false;
  if (has_value(tree, element, "dir", "rtl")) return true;
  if (is_telephone(tree, element) && !has_written_direction(tree, element)) return false;
  const bool is_input = tree[element].tag == Tag::input_;
  const Direction told =
      is_input ? direction_of_value(tree, element) : direction_of_text(tree, element);
  return told == Direction::rtl;
}

}  // namespace qo
