#include <qo_page/edits/neighbours.h>

#include <string>
#include <string_view>

#include <qo_page/base/words.h>
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

// A text such as ") : (".
bool ends_other_operand(std::string_view text) {
  const std::string_view rest = without_leading(text, blanks);
  return begins_with(rest, ")") && without_leading(rest.substr(1), blanks).substr(0, 1) == ":";
}

// That in front of an element, in the text beside it: "{a ? (" has one, and so has ") : (" after
// the element that is the operand of the first.
std::string_view operator_in_front(const Node& element) {
  const Node* before = as_node(element.prevSibling);
  if (before == nullptr || !before->isText) return std::string_view();
  const std::string_view found = operator_at_end(before->text);
  if (found == ":" && ends_other_operand(before->text)) return found;
  if (found == ":" && before->prevSibling != nullptr) {
    const std::string_view between = without_leading(before->text, " \t\r\n)");
    const bool is_second =
        between.substr(0, 1) == ":" && before->prevSibling->prevSibling != nullptr;
    const _qo_html* const first = is_second ? before->prevSibling->prevSibling : nullptr;
    return first != nullptr && first->isText && operator_at_end(first->text) == "?"
               ? found
               : std::string_view();
  }
  const bool is_in_braces = found != ":" && before->text.find('{') != std::string::npos;
  return is_in_braces ? found : std::string_view();
}

// {a && <b>c</b>} needs an element, and just one.
void check_operand(const NodeEdits& edits) {
  if (edits.find({Kind::remove, Kind::unwrap, Kind::insert_before, Kind::insert_after}) == nullptr)
    return;
  const std::string_view operator_before = operator_in_front(*edits.node);
  if (operator_before.empty()) return;
  throw Error(named(*edits.node) + " may be an operand of an expression, after " +
                  shortened(operator_before),
              edits.node->extent.begin);
}

// Whether a text ends within a string of an expression: {@html "
bool opens_string(const std::string& text) {
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
void check_string(const Node& node) {
  const Node* const parent = as_node(node.parent);
  for (const Node* at : {&node, parent}) {
    const _qo_html* const before = at->prevSibling;
    if (before == nullptr || !before->isText || !opens_string(before->text)) continue;
    throw Error(named(node) + " may lie within a string of an expression", node.extent.begin);
  }
}

bool has_branch(const Node& element, std::initializer_list<std::string_view> names) {
  return std::any_of(element.attributes.begin(), element.attributes.end(),
                     [names](const Attribute& attribute) {
                       return std::find(names.begin(), names.end(), attribute.name) != names.end();
                     });
}

bool is_other_branch(const Node& element) {
  return has_branch(element, {"v-else", "v-else-if"});
}

const Node* next_element(const Node& element) {
  const _qo_html* next = element.nextSibling;
  while (next != nullptr && as_node(next)->kind != NodeKind::element) next = next->nextSibling;
  return next == nullptr ? nullptr : as_node(next);
}

// Whether the next element is there when this one is not.
bool decides_on_next(const Node& element) {
  const Node* const next = next_element(element);
  return next != nullptr && is_other_branch(*next) && has_branch(element, {"v-if", "v-else-if"});
}

bool takes_condition(const Operation* operation) {
  return (operation->kind == Kind::remove_attribute ||
          operation->kind == Kind::set_bare_attribute) &&
         (operation->name == "v-if" || operation->name == "v-else-if");
}

void check_branches(const NodeEdits& edits) {
  const Node& node = *edits.node;
  const bool is_taken = edits.find({Kind::remove, Kind::unwrap, Kind::wrap, Kind::replace,
                                    Kind::insert_after}) != nullptr;
  const bool is_parted = edits.find({Kind::insert_before, Kind::wrap, Kind::unwrap}) != nullptr;
  const bool is_unconditioned =
      std::any_of(edits.operations.begin(), edits.operations.end(), takes_condition);
  if ((is_taken || is_unconditioned) && decides_on_next(node)) {
    throw Error("the element after " + named(node) + " depends on its condition",
                node.extent.begin);
  }
  if (is_parted && is_other_branch(node)) {
    throw Error(named(node) + " depends on the condition of the element before it",
                node.extent.begin);
  }
}

}  // namespace

void check_neighbours(const NodeEdits& edits) {
  if (edits.node->kind != NodeKind::element) return;
  check_string(*edits.node);
  check_operand(edits);
  check_branches(edits);
}

}  // namespace qo
