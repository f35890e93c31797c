#include <qo_page/template/code_steps.h>

#include <qo_page/base/words.h>

namespace qo {

namespace {

using Kind = CodeStep::Kind;

// --- {% ... %} ---

// Of engines where "end" alone ends a block.
constexpr std::string_view closed_by_end[] = {"apply", "block", "for", "if", "try", "while"};
constexpr std::string_view loops[] = {"each",  "for",   "foreach", "loop",
                                      "range", "until", "while",   "tablerow"};
constexpr std::string_view middles[] = {"catch",   "default", "elif",      "else",
                                        "elseif",  "elsif",   "empty",     "except",
                                        "finally", "plural",  "pluralize", "when"};
constexpr std::string_view defaults[] = {"else", "empty", "plural", "pluralize", "default"};

CodeStep middle(std::string_view word, std::string_view rest) {
  const bool goes_on = first_word(without_leading(rest, blanks)) == "if";
  return {Kind::middle, word, false, false, is_one_of(word, defaults) && !goes_on};
}

// {% set x = 1 %}, {% block title "x" %} and {% trans "x" %} are whole by themselves.
bool is_whole_statement(std::string_view word, std::string_view rest) {
  rest = without_leading(rest, blanks);
  if (word == "set") return rest.find('=') != std::string_view::npos;
  if (word == "trans") return begins_with(rest, "\"") || begins_with(rest, "'");
  if (word != "block") return false;
  const std::string_view value =
      without_leading(rest.substr(std::min(rest.find_first_of(blanks), rest.size())), blanks);
  const std::string_view next = first_word(value);
  return !value.empty() && next != "scoped" && next != "required" &&
         value.find_first_not_of("-+~%} \t\r\n") == 0;
}

std::vector<CodeStep> steps_of_statement(std::string_view statement) {
  statement = without_leading(statement, "-+~ \t\r\n");
  const std::string_view word = first_word(statement);
  const std::string_view rest = statement.substr(word.size());
  if (word.empty() || is_whole_statement(word, rest)) return {};
  if (word == any_end) return {{Kind::close, any_end}};
  if (begins_with(word, "end")) return {{Kind::close, without_leading(word.substr(3), "_")}};
  if (is_one_of(word, middles)) return {middle(word, rest)};
  return {{Kind::open, word, is_one_of(word, closed_by_end), is_one_of(word, loops)}};
}

// --- {{ ... }} ---

// What a section is named by: up to a blank or a mark.
std::string_view section_name(std::string_view text) {
  text = without_leading(text, "#^/>*~ \t\r\n");
  return text.substr(0, text.find_first_of("~(} \t\r\n"));
}

std::vector<CodeStep> steps_of_braces(std::string_view inner) {
  inner = without_leading(inner, "{~- \t\r\n");
  const char mark = inner.empty() ? '\0' : inner[0];
  const std::string_view name = section_name(inner);
  if (mark == '^' && name.empty()) return {{Kind::middle, name, false, false, true}};
  if (mark == '#' || mark == '^') return {{Kind::open, name, false, is_one_of(name, loops)}};
  if (mark == '/') {
    if (begins_with(inner, "/*")) return {};
    return {{Kind::close, name}};
  }
  const std::string_view word = first_word(inner);
  static constexpr std::string_view openers[] = {"if", "range", "with", "block", "define"};
  if (word == any_end) return {{Kind::close, any_end}};
  if (word == "else") return {middle(word, inner.substr(word.size()))};
  if (!is_one_of(word, openers)) return {};
  return {{Kind::open, word, true, is_one_of(word, loops)}};
}

// --- <? ... ?> and <% ... %> ---

constexpr std::string_view php = "php";

std::vector<CodeStep> steps_of_question(std::string_view inner) {
  const std::string_view word = first_word(inner);
  if (word == "xml") return {};
  const bool is_php =
      inner.empty() || inner[0] == '=' || is_blank(inner[0]) || equals_without_case(word, php);
  return steps_of_program(inner.substr(word.size()), is_php);
}

std::vector<CodeStep> steps_of_percent(std::string_view inner) {
  const bool is_comment = begins_with(inner, "#") || begins_with(inner, "--");
  const bool is_declaration =
      begins_with(inner, "%") || begins_with(inner, "@") || begins_with(inner, "!");
  if (is_comment || is_declaration) return {};
  return steps_of_program(inner, false);
}

// What is between the brackets of a piece, of which the last one of a page may be cut off.
std::string_view inside(std::string_view code) {
  const std::string_view last = code.size() < 4 ? std::string_view() : code.substr(code.size() - 2);
  const bool is_closed = last == "?>" || last == "%>" || last == "}}" || last == "%}";
  return code.substr(2, code.size() - (is_closed ? 4 : 2));
}

}  // namespace

std::vector<CodeStep> steps_of(std::string_view code) {
  if (begins_with(code, "<?")) return steps_of_question(inside(code));
  if (begins_with(code, "<%")) return steps_of_percent(inside(code));
  if (begins_with(code, "{{")) return steps_of_braces(inside(code));
  if (begins_with(code, "{%")) return steps_of_statement(inside(code));
  return {};
}

}  // namespace qo
