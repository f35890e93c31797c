#include <qo_page/selectors/attribute_match.h>

#include <algorithm>

#include <qo_page/base/ascii.h>
#include <qo_page/text/attribute_value.h>
#include <qo_page/text/class_tokens.h>

namespace qo::selectors {

namespace {

bool has_word(std::string_view text, std::string_view word) {
  for (std::size_t i = 0; i < text.size();) {
    if (is_blank(text[i])) {
      ++i;
      continue;
    }
    const std::size_t begin = i;
    while (i < text.size() && !is_blank(text[i])) ++i;
    if (text.substr(begin, i - begin) == word) return true;
  }
  return false;
}

bool begins(std::string_view text, std::string_view wanted) {
  return text.substr(0, wanted.size()) == wanted;
}

bool ends(std::string_view text, std::string_view wanted) {
  return text.size() >= wanted.size() && begins(text.substr(text.size() - wanted.size()), wanted);
}

bool compares(AttributeTest::Operator op, std::string_view value, std::string_view wanted) {
  using Operator = AttributeTest::Operator;
  switch (op) {
    case Operator::exists:
      return true;
    case Operator::equals:
      return value == wanted;
    case Operator::has_word:
      return has_word(value, wanted);
    case Operator::begins_word:
      return begins(value, wanted) &&
             (value.size() == wanted.size() || value[wanted.size()] == '-');
    case Operator::begins:
      return !wanted.empty() && begins(value, wanted);
    case Operator::ends:
      return !wanted.empty() && ends(value, wanted);
    case Operator::contains:
      return !wanted.empty() && value.find(wanted) != value.npos;
  }
  return false;
}

bool may_have_code(const Tree& tree, std::string_view value) {
  return tree.dialect->has_code() && value.find_first_of("{<") != value.npos;
}

// Code in a value ends in it, whatever comes later. A reference in a token may stand for a blank.
bool has_class_beside_code(const Tree& tree, Range value, const std::string& name) {
  const std::string_view source = std::string_view(tree.source).substr(0, value.end);
  CodeScanner code(source, *tree.dialect);
  const std::vector<ClassToken> tokens = class_tokens(source, value, code);
  return std::any_of(tokens.begin(), tokens.end(), [&](const ClassToken& token) {
    const std::string_view written = token.range.in(source);
    if (!token.is_whole) return false;
    return written == name || (written.find('&') != written.npos &&
                               has_word(decode(written, DecodeMode::attribute), name));
  });
}

}  // namespace

bool matches(const NameTest& test, const Tree& tree, NodeIndex node) {
  if (tree[node].tag != Tag::unknown) return false;
  const std::string_view name = tree.name(node);
  return tree.dialect->has_case ? name == test.name : equals_without_case(name, test.name);
}

bool matches(const ClassTest& test, const Tree& tree, NodeIndex node) {
  const AttributeRecord* const attribute = tree.find_attribute(node, "class");
  if (attribute == nullptr) return false;
  const Range value = {tree.value_begin(*attribute), attribute->value_end};
  const std::string_view written = value.in(tree.source);
  const bool has_references = written.find('&') != written.npos;
  if (!has_references && written.find(test.name) == written.npos) return false;
  if (may_have_code(tree, written)) return has_class_beside_code(tree, value, test.name);
  std::string buffer;
  return has_word(decoded_value(tree, *attribute, buffer), test.name);
}

bool matches(const IdTest& test, const Tree& tree, NodeIndex node) {
  const AttributeRecord* const attribute = tree.find_attribute(node, "id");
  std::string buffer;
  return attribute != nullptr && decoded_value(tree, *attribute, buffer) == test.id;
}

bool matches(const AttributeTest& test, const Tree& tree, NodeIndex node) {
  const AttributeRecord* const attribute = tree.find_attribute(node, test.name);
  if (attribute == nullptr) return false;
  if (test.op == AttributeTest::Operator::exists) return true;
  std::string buffer;
  const std::string_view value = decoded_value(tree, *attribute, buffer);
  const bool ignores_case =
      test.ignores_case || (test.ignores_case_in_html && tree[node].space == Namespace::html);
  return ignores_case ? compares(test.op, lower(value), lower(test.value))
                      : compares(test.op, value, test.value);
}

}  // namespace qo::selectors
