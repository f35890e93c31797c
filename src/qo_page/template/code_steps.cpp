#include <qo_page/template/code_steps.h>

#include <qo_page/base/words.h>
#include <qo_page/template/block_words.h>

namespace qo {

namespace {

using Kind = CodeStep::Kind;

// A branch after a further condition is no default.
CodeStep branch(const BlockWord& word, std::string_view rest) {
  CodeStep step = word.step();
  const bool goes_on = first_word(without_leading(rest, blanks)) == "if";
  step.is_default = step.is_default && !goes_on;
  return step;
}

// --- {% ... %} ---

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
  if (const BlockWord* const known = find_block_word(word, languages::statement)) {
    return {branch(*known, rest)};
  }
  if (begins_with(word, any_end)) return {{Kind::close, without_leading(word.substr(3), "_")}};
  CodeStep opening{Kind::open, word};
  opening.is_sure = false;
  return {opening};
}

// --- {{ ... }} ---

// What a section is named by: up to a blank or a mark.
std::string_view section_name(std::string_view text) {
  text = without_leading(text, "#^/>*~ \t\r\n");
  return text.substr(0, text.find_first_of("~(}>% \t\r\n"));
}

bool is_comment_in_braces(std::string_view inner) {
  return begins_with(inner, "!") || begins_with(inner, "/*");
}

// {{< /x >}} and {{% /x %}} end blocks as {{/x}} does.
std::string_view without_marks_of_ends(std::string_view inner) {
  const std::string_view rest = without_leading(inner, "<% \t\r\n");
  return begins_with(rest, "/") ? rest : inner;
}

std::vector<CodeStep> steps_of_braces(std::string_view inner) {
  inner = without_marks_of_ends(without_leading(inner, "{~- \t\r\n"));
  if (is_comment_in_braces(inner)) return {};
  const char mark = inner.empty() ? '\0' : inner[0];
  const std::string_view name = section_name(inner);
  if (mark == '^' && name.empty()) return {{Kind::middle, name, false, false, true}};
  if (mark == '#' || mark == '^') {
    return {{Kind::open, name, false, is_loop_word(name, languages::section)}};
  }
  if (mark == '/') return {{Kind::close, name}};
  const std::string_view word = first_word(inner);
  const BlockWord* const known = find_block_word(word, languages::action);
  if (known == nullptr) return {};
  CodeStep step = branch(*known, inner.substr(word.size()));
  step.is_sure = false;  // {{ end }} may be a variable
  return {step};
}

// --- <? ... ?> and <% ... %> ---

std::vector<CodeStep> steps_of_question(std::string_view inner) {
  const std::string_view word = first_word(inner);
  if (word == "xml") return {};
  const bool is_php =
      inner.empty() || inner[0] == '=' || is_blank(inner[0]) || equals_without_case(word, "php");
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

// Whether it stands for text whatever its steps are.
bool is_output(std::string_view code) {
  std::string_view inner = code.substr(2);
  if (code[0] == '{') {
    return code[1] == '{' && !is_comment_in_braces(without_leading(inner, "{~- \t\r\n")) &&
           steps_of(code).empty();
  }
  if (begins_with(inner, "=")) return true;
  if (code[1] != '?') return false;
  if (equals_without_case(inner.substr(0, 3), "php")) inner.remove_prefix(3);
  static constexpr std::string_view writers[] = {"echo", "print", "printf"};
  return is_one_of(first_word(without_leading(inner, blanks)), writers);
}

bool is_comment(std::string_view code) {
  if (code[0] == '<') return begins_with(code.substr(2), "#") || begins_with(code.substr(2), "--");
  return code[1] == '#' || is_comment_in_braces(without_leading(code.substr(2), "~- "));
}

}  // namespace

bool may_write(std::string_view code) {
  static constexpr std::string_view silent[] = {"assign", "do",   "extends", "from",
                                                "import", "load", "set",     "use"};
  if (is_comment(code)) return false;
  const std::string_view word = first_word(without_leading(code.substr(2), "-+~ \t\r\n"));
  return code[1] != '%' || !is_one_of(word, silent);
}

std::vector<CodeStep> steps_of(std::string_view code) {
  if (begins_with(code, "<?")) return steps_of_question(inside(code));
  if (begins_with(code, "<%")) return steps_of_percent(inside(code));
  if (begins_with(code, "{{")) return steps_of_braces(inside(code));
  if (begins_with(code, "{%")) return steps_of_statement(inside(code));
  return {};
}

CodeRole role_of(std::string_view code) {
  if (is_output(code)) return CodeRole::output;
  const std::vector<CodeStep> steps = steps_of(code);
  const bool opens = steps.empty() || steps[0].kind == Kind::open;
  return opens ? CodeRole::opening : CodeRole::closing;
}

namespace {

// What is in a mark of one brace: {#if x}, {:else}, {/if}, {if $x}, {@html x}, {$x}.
CodeRole role_in_mark(std::string_view inner) {
  if (inner.empty()) return CodeRole::output;
  if (inner[0] == '#' || inner[0] == '^') return CodeRole::opening;
  if (inner[0] == '/' || inner[0] == ':') return CodeRole::closing;
  const BlockWord* const known =
      find_block_word(first_word(inner), languages::statement | languages::toolkit);
  if (known == nullptr) return CodeRole::output;
  return known->kind == Kind::open ? CodeRole::opening : CodeRole::closing;
}

}  // namespace

CodeRole role_of(std::string_view code, const Dialect& dialect) {
  for (const CodeMark& mark : dialect.marks) {
    if (mark.open.empty()) break;
    if (!begins_with(code, mark.open)) continue;
    if (mark.use == CodeUse::output) return CodeRole::output;
    if (mark.use == CodeUse::silent) return CodeRole::opening;
    const std::string_view inner = code.substr(mark.open.size());
    return role_in_mark(without_leading(inner, "-+~ \t\r\n"));
  }
  return dialect.has_known_marks ? role_of(code) : CodeRole::opening;
}

}  // namespace qo
