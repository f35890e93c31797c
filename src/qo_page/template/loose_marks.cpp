#include <qo_page/template/loose_marks.h>

#include <algorithm>

#include <qo_page/base/words.h>
#include <qo_page/template/block_words.h>

namespace qo {

namespace {

using Kind = CodeStep::Kind;

constexpr std::size_t npos = std::string_view::npos;
constexpr std::string_view spaces = " \t";

char first(std::string_view text) {
  return text.empty() ? '\0' : text[0];
}

bool is_one_of_characters(char c, std::string_view characters) {
  return c != '\0' && characters.find(c) != npos;
}

// Words may have points and dashes in them.
std::string_view name_at(std::string_view text) {
  std::size_t length = 0;
  if (!is_letter(first(text)) && first(text) != '_') return {};
  while (length < text.size() &&
         (is_word_character(text[length]) || is_one_of_characters(text[length], ".-"))) {
    ++length;
  }
  return text.substr(0, length);
}

bool ends_with(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

CodeStep opening(std::string_view name) {
  return {Kind::open, name, false, is_loop_word(name, languages::section)};
}

// {else}, {elseif $a}, {foreachelse}
bool is_divider(std::string_view word) {
  return begins_with(word, "else") || begins_with(word, "elif") || ends_with(word, "else");
}

CodeStep divider(std::string_view word, std::string_view rest) {
  const bool goes_on = first_word(without_leading(rest, blanks)) == "if";
  return {Kind::middle, word, false, false, ends_with(word, "else") && !goes_on};
}

bool is_capital(char c) {
  return c >= 'A' && c <= 'Z';
}

std::string_view capitals_at(std::string_view text) {
  const std::string_view word = first_word(text);
  return std::all_of(word.begin(), word.end(), [](char c) { return is_capital(c) || c == '_'; })
             ? word
             : std::string_view();
}

constexpr std::string_view tag_word = "TMPL_";

bool is_tag_word(std::string_view name) {
  return equals_without_case(name.substr(0, tag_word.size()), tag_word);
}

}  // namespace

LooseMarks::LooseMarks(std::string_view source)
    : source_(source), starts_("{<"), has_capitals_(has_placeholder()) {
  if (!has_end_in_braces()) starts_.erase(0, 1);
  constexpr std::string_view at_ends[] = {"@end", "@stop", "@show", "@append", "@overwrite"};
  const auto is_there = [source](std::string_view end) { return source.find(end) != npos; };
  if (std::any_of(std::begin(at_ends), std::end(at_ends), is_there)) starts_ += '@';
  if (is_there("#end") || is_there("#{end}")) starts_ += '#';
  if (is_there("%]")) starts_ += '[';
}

bool LooseMarks::has_end_in_braces() const {
  for (std::size_t i = 0; (i = source_.find("{/", i)) != npos; ++i) {
    const std::string_view name = name_at(source_.substr(i + 2));
    if (!name.empty() && first(source_.substr(i + 2 + name.size())) == '}') return true;
  }
  return false;
}

// {NAME}: what pages have whose blocks are in comments.
bool LooseMarks::has_placeholder() const {
  for (std::size_t i = 0; (i = source_.find('{', i)) != npos; ++i) {
    const std::string_view name = name_at(source_.substr(i + 1));
    const bool is_closed = first(source_.substr(i + 1 + name.size())) == '}';
    if (!name.empty() && is_closed && (i == 0 || source_[i - 1] != '$')) return true;
  }
  return false;
}

LooseMark LooseMarks::at(std::size_t at) {
  const std::string_view rest = source_.substr(at);
  LooseMark mark{MarkFamily::braces, at + 1, at + 1, at + 1, {}};
  if (starts_.find(rest[0]) == npos) return mark;
  switch (rest[0]) {
    case '{':
      in_braces(rest.substr(1), mark);
      break;
    case '@':
      at_sign(at, mark);
      break;
    case '#':
      hash(at, mark);
      break;
    case '[':
      brackets(at, mark);
      break;
    case '<':
      if (begins_with(rest, "<!--")) {
        comment(rest.substr(4), mark);
      } else {
        tag(rest.substr(1), mark);
      }
      break;
  }
  if (mark.steps.empty() || mark.family == MarkFamily::brackets) return mark;
  mark.word_end = word_end(at);
  mark.end = end_to_show(at);
  return mark;
}

std::size_t LooseMarks::word_end(std::size_t at) const {
  std::size_t end = std::min(source_.find_first_not_of("{<@#/:?^+$!- \t\r\n", at), source_.size());
  while (end < source_.size() &&
         (is_word_character(source_[end]) || is_one_of_characters(source_[end], ".-:"))) {
    ++end;
  }
  return end;
}

// What is shown of a mark: up to its bracket, or its word.
std::size_t LooseMarks::end_to_show(std::size_t at) const {
  constexpr std::size_t longest = 200;
  const std::string_view rest = source_.substr(at, longest);
  if (rest[0] == '@' || rest[0] == '#') {
    const std::string_view text = without_leading(rest.substr(1), "{@");
    return at + (rest.size() - text.size()) + first_word(text).size();
  }
  const std::size_t end = rest.find_first_of(rest[0] == '{' ? "}\n" : ">\n");
  if (end == npos) return at + rest.size();
  return at + end + (rest[end] == '\n' ? 0 : 1);
}

// {if $a} {else} {/if}, {#if a} {:else} {/if}
void LooseMarks::in_braces(std::string_view rest, LooseMark& mark) const {
  mark.family = MarkFamily::braces;
  const bool ends = first(rest) == '/';
  const bool divides = first(rest) == ':';
  const bool is_marked = ends || divides || is_one_of_characters(first(rest), "#?^<+@$");
  const std::string_view text = rest.substr(is_marked ? 1 : 0);
  const std::string_view name = name_at(text);
  const std::string_view after = text.substr(name.size());
  if (name.empty()) return;
  if (ends) {
    if (first(after) == '}') mark.steps = {{Kind::close, name}};
  } else if (divides || is_divider(name)) {
    mark.steps = {divider(name, after)};
  } else if (is_blank(first(after)) || is_one_of_characters(first(after), "}(")) {
    mark.steps = {opening(name)};
  }
}

// @if ($a) @else @endif. A word alone may be prose, unless its line has nothing else.
void LooseMarks::at_sign(std::size_t at, LooseMark& mark) const {
  mark.family = MarkFamily::at_sign;
  const char before = at == 0 ? '\n' : source_[at - 1];
  if (is_word_character(before) || is_one_of_characters(before, "@.*\\/-")) return;
  const std::string_view word = first_word(source_.substr(at + 1));
  const std::string_view after = without_leading(source_.substr(at + 1 + word.size()), spaces);
  static constexpr std::string_view section_ends[] = {"stop", "show", "append", "overwrite"};
  static constexpr std::string_view dividers[] = {"empty", "case", "default"};
  const bool has_arguments = first(after) == '(';
  if (is_one_of(word, section_ends)) {
    mark.steps = {{Kind::close, "section", false, false, false, false}};
  } else if (begins_with(word, any_end) && word.size() > any_end.size()) {
    mark.steps = {{Kind::close, word.substr(any_end.size())}};
  } else if (begins_with(word, "else") ||
             (is_one_of(word, dividers) && has_arguments == (word == "case"))) {
    const bool is_default = word == "else" || word == "empty" || word == "default";
    mark.steps = {{Kind::middle, word, false, false, is_default}};
  } else if (!word.empty()) {
    const std::size_t line = source_.substr(0, at).find_last_not_of(spaces);
    const bool is_alone = (line == npos || source_[line] == '\n') &&
                          (after.empty() || is_one_of_characters(first(after), "\r\n"));
    if (has_arguments || is_alone) {
      const bool is_loop = is_loop_word(word, languages::section) || word == "forelse";
      mark.steps = {{Kind::open, word, false, is_loop}};
    }
  }
}

// #if ($a) #else #end
void LooseMarks::hash(std::size_t at, LooseMark& mark) const {
  mark.family = MarkFamily::hash;
  if (at > 0 && is_one_of_characters(source_[at - 1], "&#\\")) return;
  std::string_view rest = source_.substr(at + 1);
  const bool in_braces = first(rest) == '{';
  if (in_braces || first(rest) == '@') rest.remove_prefix(1);
  const std::string_view word = first_word(rest);
  std::string_view after = rest.substr(word.size());
  if (in_braces && first(after) != '}') return;
  if (in_braces) after.remove_prefix(1);
  static constexpr std::string_view openers[] = {"if", "foreach", "macro", "define"};
  if (word == any_end) {
    if (in_braces || first(after) != '-') mark.steps = {{Kind::close, any_end}};
  } else if (word == "else" || word == "elseif") {
    mark.steps = {{Kind::middle, word, false, false, word == "else"}};
  } else if (is_one_of(word, openers) || source_[at + 1] == '@') {
    after = without_leading(after, spaces);
    const std::string_view arguments = after.substr(0, 80);
    const std::size_t variable = arguments.find('$');
    const bool is_code = first(after) == '(' && variable < arguments.find('\n');
    if (is_code) mark.steps = {{Kind::open, word, true, word == "foreach"}};
  }
}

// [% IF a %] [% END %]
void LooseMarks::brackets(std::size_t at, LooseMark& mark) {
  mark.family = MarkFamily::brackets;
  if (source_.substr(at, 2) != "[%") return;
  const std::size_t close = bracket_end_.find(source_, at + 2);
  if (close == npos || bracket_begin_.find(source_, at + 2) < close) return;
  const std::string_view code = source_.substr(at + 2, close - at - 2);
  const std::string_view inner = without_leading(code, "-+~= \t\r\n");
  if (first(code) == '#') return;
  mark.steps = steps_of_program(inner, false);
  if (first(inner) == '|') mark.steps = {{Kind::open, "|", true}};  // a filter
  mark.end = mark.word_end = mark.next = close + 2;
}

// <#if a> <#else> </#if>, <@x> </@x>, <c:if> </c:if>, <TMPL_IF a> <TMPL_ELSE> </TMPL_IF>
void LooseMarks::tag(std::string_view rest, LooseMark& mark) const {
  mark.family = MarkFamily::tags;
  const bool ends = first(rest) == '/';
  if (ends) rest.remove_prefix(1);
  const bool is_marked = is_one_of_characters(first(rest), "#@");
  const std::string_view word = name_at(rest.substr(is_marked ? 1 : 0));
  std::string_view name = rest.substr(0, word.size() + (is_marked ? 1 : 0));
  const bool has_prefix = !word.empty() && !is_marked && first(rest.substr(name.size())) == ':';
  if (has_prefix) {
    name = rest.substr(0, name.size() + 1 + name_at(rest.substr(name.size() + 1)).size());
  }
  if (ends && begins_with(rest, "@>")) {
    mark.steps = {{Kind::close, any_end}};
    return;
  }
  if (word.empty() || !(is_marked || has_prefix || is_tag_word(word))) return;
  if (ends) {
    mark.steps = {{Kind::close, name, false, false, false, !has_prefix}};
    return;
  }
  const std::string_view inner = is_tag_word(word) ? word.substr(tag_word.size()) : word;
  if (!has_prefix && equals_without_case(inner.substr(0, 3), "els")) {
    mark.steps = {{Kind::middle, name, false, false, equals_without_case(inner, "else")}};
    return;
  }
  const std::size_t end = rest.find_first_of("<>");
  const bool is_whole = end != npos && end > 0 && rest[end] == '>' && rest[end - 1] == '/';
  if (!is_whole) mark.steps = {{Kind::open, name, rest[0] == '@'}};
}

// <!-- IF a --> <!-- ELSE --> <!-- ENDIF -->, <!-- BEGIN a --> <!-- END a -->, <!--#if a -->
// <!--#endif -->, <!-- TMPL_IF a --> <!-- /TMPL_IF -->
void LooseMarks::comment(std::string_view rest, LooseMark& mark) const {
  mark.family = MarkFamily::comments;
  if (first(rest) == '#') {
    const std::string_view word = first_word(rest.substr(1));
    if (word == "if") mark.steps = {{Kind::open, word}};
    if (word == "endif") mark.steps = {{Kind::close, "if"}};
    if (begins_with(word, "el")) mark.steps = {{Kind::middle, word, false, false, word == "else"}};
    return;
  }
  rest = without_leading(rest, blanks);
  const bool ends = first(rest) == '/';
  const std::string_view word = first_word(rest.substr(ends ? 1 : 0));
  if (is_tag_word(word)) {
    const std::string_view inner = word.substr(tag_word.size());
    const bool divides = equals_without_case(inner.substr(0, 3), "els");
    const Kind kind = ends ? Kind::close : divides ? Kind::middle : Kind::open;
    mark.steps = {{kind, word}};
    return;
  }
  const std::string_view capitals = capitals_at(rest);
  if (!has_capitals_ || capitals.empty()) return;
  const std::string_view name = name_at(without_leading(rest.substr(capitals.size()), blanks));
  if (capitals == "END") {
    if (!name.empty()) mark.steps = {{Kind::close, name}};
  } else if (capitals == "BEGIN") {
    if (!name.empty()) mark.steps = {{Kind::open, name, false, true}};
  } else if (begins_with(capitals, "END")) {
    mark.steps = {{Kind::close, capitals.substr(3)}};
  } else if (begins_with(capitals, "ELSE") || capitals == "BEGINELSE") {
    mark.steps = {{Kind::middle, capitals, false, false, capitals == "ELSE"}};
  } else {
    mark.steps = {{Kind::open, capitals}};
  }
}

}  // namespace qo
