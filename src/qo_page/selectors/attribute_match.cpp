#include <qo_page/selectors/attribute_match.h>

#include <algorithm>

#include <qo_page/base/ascii.h>
#include <qo_page/decode.h>

namespace qo::selectors {

namespace {

std::string_view decoded(const std::string& written, std::string& buffer) {
  if (written.find('&') == written.npos) return written;
  return buffer = decode(written, DecodeMode::attribute);
}

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

}  // namespace

const Attribute* find_attribute(const Node& node, std::string_view name) {
  for (const Attribute& attribute : node.attributes) {
    if (equals_without_case(attribute.name, name)) return &attribute;
  }
  return nullptr;
}

std::string_view value_of(const Attribute& attribute, std::string& buffer) {
  return decoded(attribute.value, buffer);
}

bool has_value(const Node& node, std::string_view name, std::string_view value) {
  const Attribute* attribute = find_attribute(node, name);
  std::string buffer;
  return attribute != nullptr && equals_without_case(value_of(*attribute, buffer), value);
}

bool matches(const NameTest& test, const Node& node) {
  return node.name == Tag::unknown && equals_without_case(node.tag, test.name);
}

// A reference in a token may stand for a blank.
bool matches(const ClassTest& test, const Node& node) {
  std::string buffer;
  return std::any_of(node.classes.begin(), node.classes.end(), [&](const std::string& token) {
    return token == test.name ||
           (token.find('&') != token.npos && has_word(decoded(token, buffer), test.name));
  });
}

bool matches(const IdTest& test, const Node& node) {
  const Attribute* attribute = find_attribute(node, "id");
  std::string buffer;
  return attribute != nullptr && value_of(*attribute, buffer) == test.id;
}

bool matches(const AttributeTest& test, const Node& node) {
  const Attribute* attribute = find_attribute(node, test.name);
  if (attribute == nullptr) return false;
  if (test.op == AttributeTest::Operator::exists) return true;
  std::string buffer;
  const std::string_view value = value_of(*attribute, buffer);
  const bool ignores_case =
      test.ignores_case || (test.ignores_case_in_html && node.space == Space::html);
  return ignores_case ? compares(test.op, lower(value), lower(test.value))
                      : compares(test.op, value, test.value);
}

}  // namespace qo::selectors
