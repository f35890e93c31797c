#include <qo_page/selectors/attribute.h>

#include <utility>

#include <qo_page/base/ascii.h>

namespace qo::selectors {

namespace {

using Operator = AttributeTest::Operator;

constexpr std::pair<std::string_view, Operator> operators[] = {
    {"=", Operator::equals},  {"~=", Operator::has_word}, {"|=", Operator::begins_word},
    {"^=", Operator::begins}, {"$=", Operator::ends},     {"*=", Operator::contains},
};

// Those whose values HTML compares without case, with a blank before and after each.
constexpr std::string_view caseless =
    " accept accept-charset align alink axis bgcolor charset checked clear codetype color compact "
    "declare defer dir direction disabled enctype face frame hreflang http-equiv lang language "
    "link "
    "media method multiple nohref noresize noshade nowrap readonly rel rev rules scope scrolling "
    "selected shape target text type valign valuetype vlink ";

bool is_caseless(const std::string& name) {
  return caseless.find(" " + lower(name) + " ") != std::string_view::npos;
}

Operator read_operator(Reader& reader) {
  for (const auto& [text, op] : operators) {
    if (reader.take(text)) return op;
  }
  if (reader.peek() == '|') reader.fail_for_namespace();
  if (reader.peek() == '!') reader.fail("CSS has no \"!=\": write :not([name=value])");
  reader.fail("expected \"]\" or an operator such as \"=\", not " + reader.found());
}

std::string read_value(Reader& reader) {
  if (reader.at_quote()) return reader.quoted();
  return reader.name("a name or a value in quotes");
}

void read_case_flag(Reader& reader, AttributeTest& attribute) {
  const char flag = lower(reader.peek());
  attribute.ignores_case = flag == 'i';
  attribute.ignores_case_in_html = flag != 'i' && flag != 's' && is_caseless(attribute.name);
  if (flag != 'i' && flag != 's') return;
  reader.skip();
  reader.skip_blanks();
}

}  // namespace

AttributeTest read_attribute(Reader& reader) {
  AttributeTest attribute;
  reader.skip();
  reader.skip_blanks();
  if (reader.peek() == '|') reader.fail_for_namespace();
  attribute.name = reader.name("the name of an attribute");
  reader.skip_blanks();
  if (reader.take("]")) return attribute;
  attribute.op = read_operator(reader);
  reader.skip_blanks();
  attribute.value = read_value(reader);
  reader.skip_blanks();
  read_case_flag(reader, attribute);
  reader.expect("]", "\"]\"");
  return attribute;
}

}  // namespace qo::selectors
