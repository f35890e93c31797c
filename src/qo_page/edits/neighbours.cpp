#include <qo_page/edits/neighbours.h>

#include <string>
#include <string_view>

#include <qo_page/base/words.h>
#include <qo_page/edits/attribute_names.h>
#include <qo_page/edits/edit_error.h>

namespace qo {

namespace {

using Kind = Operation::Kind;

std::string_view without_end(std::string_view text, std::string_view end) {
  const bool has_end = text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
  return has_end ? text.substr(0, text.size() - end.size()) : text;
}

std::string_view without_blanks_at_end(std::string_view text) {
  return text.substr(0, text.find_last_not_of(blanks) + 1);
}

// The operator of an expression in braces that a text ends with, but for blanks and a parenthesis.
std::string_view operator_at_end(std::string_view text) {
  static constexpr std::string_view operators[] = {"&&", "||", "??", "=>", "return", "?", ":"};
  text = without_blanks_at_end(without_end(without_blanks_at_end(text), "("));
  for (const std::string_view one : operators) {
    if (without_end(text, one).size() < text.size()) return one;
  }
  return std::string_view();
}

// The text right in front of a node; empty where there is none.
std::string_view text_before(const Tree& tree, NodeIndex node) {
  const NodeIndex before = tree.previous_sibling(node);
  if (before == no_node || tree[before].kind != NodeKind::text) return std::string_view();
  return tree.html(before);
}

// Whether a text goes on after the first operand of "? :", which is in front of it.
bool is_after_first_operand(const Tree& tree, NodeIndex text) {
  if (without_leading(tree.html(text), " \t\r\n)").substr(0, 1) != ":") return false;
  const NodeIndex first = tree.previous_sibling(text);
  return first != no_node && operator_at_end(text_before(tree, first)) == "?";
}

// A text such as ") : (".
bool ends_other_operand(std::string_view text) {
  const std::string_view rest = without_leading(text, blanks);
  return begins_with(rest, ")") && without_leading(rest.substr(1), blanks).substr(0, 1) == ":";
}

// The operator in front of an element, in the text beside it. "{a ? (" has one, and so has ") : ("
// after the element that is its first operand.
std::string_view operator_in_front(const Tree& tree, NodeIndex element) {
  const std::string_view before = text_before(tree, element);
  const std::string_view found = operator_at_end(before);
  if (found.empty() || (found == ":" && ends_other_operand(before))) return found;
  const bool is_operator = found == ":"
                               ? is_after_first_operand(tree, tree.previous_sibling(element))
                               : before.find('{') != before.npos;
  return is_operator ? found : std::string_view();
}

// {a && <b>c</b>} needs an element, and just one.
void check_operand(const Tree& tree, const NodeEdits& edits) {
  if (edits.find({Kind::remove, Kind::remove_line, Kind::unwrap, Kind::insert_before,
                  Kind::insert_after}) == nullptr) {
    return;
  }
  const std::string_view operator_before = operator_in_front(tree, edits.node);
  if (operator_before.empty()) return;
  throw Error(named(tree, edits.node) + " may be an operand of an expression, after " +
                  shortened(operator_before),
              tree[edits.node].begin);
}

// Whether a text ends within a string of an expression: {@html "
bool opens_string(std::string_view text) {
  const std::size_t brace = text.rfind('{');
  if (brace == text.npos || brace + 1 == text.size()) return false;
  if (!is_letter(text[brace + 1]) && text[brace + 1] != '@') return false;
  char quote = '\0';
  for (std::size_t i = brace; i < text.size(); ++i) {
    if (quote == '\0' && text[i] == '}') return false;
    const bool may_open =
        (text[i] == '"' || text[i] == '\'' || text[i] == '`') && !is_word_character(text[i - 1]);
    if (quote == '\0' && may_open) {
      quote = text[i];
    } else if (text[i] == '\\') {
      ++i;
    } else if (text[i] == quote) {
      quote = '\0';
    }
  }
  return quote != '\0';
}

// Markup in a string of an expression is a part of a program.
void check_string(const Tree& tree, NodeIndex node) {
  for (const NodeIndex at : {node, tree.parent(node)}) {
    if (!opens_string(text_before(tree, at))) continue;
    throw Error(named(tree, node) + " may lie within a string of an expression", tree[node].begin);
  }
}

bool has_branch(const Tree& tree, NodeIndex element,
                std::initializer_list<std::string_view> names) {
  return std::any_of(tree.attributes_begin(element), tree.attributes_end(element),
                     [&](const AttributeRecord& attribute) {
                       const std::string_view name = tree.name(attribute);
                       return std::find(names.begin(), names.end(), name) != names.end();
                     });
}

bool is_other_branch(const Tree& tree, NodeIndex element) {
  return has_branch(tree, element, {"v-else", "v-else-if"});
}

// Whether the next element is there when this one is not.
bool decides_on_next(const Tree& tree, NodeIndex element) {
  if (!has_branch(tree, element, {"v-if", "v-else-if"})) return false;
  NodeIndex next = tree.next_sibling(element);
  while (next != no_node && !tree.is_element(next)) next = tree.next_sibling(next);
  return next != no_node && is_other_branch(tree, next);
}

bool takes_condition(const Operation* operation) {
  return (operation->kind == Kind::remove_attribute ||
          operation->kind == Kind::set_bare_attribute) &&
         (is_named("v-if", operation->name) || is_named("v-else-if", operation->name));
}

void check_branches(const Tree& tree, const NodeEdits& edits) {
  const NodeIndex node = edits.node;
  const bool is_taken = edits.find({Kind::remove, Kind::remove_line, Kind::unwrap, Kind::wrap,
                                    Kind::replace, Kind::insert_after}) != nullptr;
  const bool is_parted = edits.find({Kind::insert_before, Kind::wrap, Kind::unwrap}) != nullptr;
  const bool is_unconditioned =
      std::any_of(edits.operations.begin(), edits.operations.end(), takes_condition);
  if ((is_taken || is_unconditioned) && decides_on_next(tree, node)) {
    throw Error("the element after " + named(tree, node) + " depends on its condition",
                tree[node].begin);
  }
  if (is_parted && is_other_branch(tree, node)) {
    throw Error(named(tree, node) + " depends on the condition of the element before it",
                tree[node].begin);
  }
}

}  // namespace

void check_neighbours(const Tree& tree, const NodeEdits& edits) {
  if (!tree.is_element(edits.node)) return;
  check_string(tree, edits.node);
  check_operand(tree, edits);
  check_branches(tree, edits);
}

}  // namespace qo
