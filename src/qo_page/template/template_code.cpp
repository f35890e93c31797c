#include <qo_page/template/template_code.h>

#include <algorithm>

#include <qo_page/base/tags.h>
#include <qo_page/base/words.h>
#include <qo_page/template/php_code.h>

namespace qo {

namespace {

constexpr std::size_t npos = std::string_view::npos;
constexpr std::size_t farthest_php = 8192;
constexpr std::size_t farthest = 4096;  // how far a string or its code is followed

// Whether a tag begins at `at`, where a "<" is: </name, <name>, <name/> or <name attribute=, with a
// name that HTML has. A comparison is none of these.
bool is_tag(std::string_view code, std::size_t at) {
  const bool is_end = at + 1 < code.size() && code[at + 1] == '/';
  const std::string_view rest = code.substr(at + (is_end ? 2 : 1));
  const std::string_view name = first_word(rest);
  if (name.empty() || is_digit(name[0])) return false;
  if (is_end) return true;
  if (find_tag(name) == Tag::unknown) return false;
  const std::string_view after = rest.substr(name.size());
  if (after.empty()) return false;
  if (after[0] == '>' || after[0] == '/') return true;
  if (!is_blank(after[0])) return false;
  const std::string_view attribute = without_leading(after, blanks);
  const std::size_t length = attribute.find_first_of("= \t\r\n\f>");
  return length != 0 && length != npos && attribute[length] == '=';
}

// The first tag outside strings; npos when there is none.
std::size_t find_tag_in(std::string_view code) {
  const std::size_t last_end = code.rfind('>');
  if (last_end == npos) return npos;
  for (std::size_t i = 0; i < last_end; ++i) {
    if (code[i] == '"' || code[i] == '\'') {
      const std::size_t close = code.find(code[i], i + 1);
      if (close != npos) i = close;
    } else if (code[i] == '<' && is_tag(code, i)) {
      return i;
    }
  }
  return npos;
}

// Then it is not code, but two brackets of a text that have a part of a page between them.
bool holds_tags(std::string_view code) {
  return find_tag_in(code) != npos;
}

}  // namespace

unsigned place_bit(CodeScanner::Place place) {
  using Place = CodeScanner::Place;
  switch (place) {
    case Place::text:
    case Place::fragment:
      return code_places::text;
    case Place::tag:
      return code_places::tag;
    case Place::unquoted:
      return code_places::unquoted;
    case Place::quoted:
      return code_places::quoted;
    default:
      return code_places::raw;
  }
}

CodeScanner::CodeScanner(std::string_view source, const Dialect& dialect)
    : source_(source), dialect_(dialect) {
  const std::string_view wanted[wanted_count] = {"?>", "%>", "--%>", "}}", "--}}", "%}",
                                                 "#}", "<?", "{{",   "{%", "{#"};
  for (std::size_t i = 0; i < wanted_count; ++i) finders_[i] = Finder(wanted[i]);
}

std::size_t CodeScanner::find(Wanted wanted, std::size_t from) {
  return finders_[wanted].find(source_, from);
}

std::size_t CodeScanner::next_start(std::size_t at) {
  if (start_is_set_ && start_ >= at) return start_;
  start_is_set_ = true;
  const std::string_view starts = dialect_.text_starts;
  start_ = starts.empty() ? npos : source_.find_first_of(starts, at);
  while (start_ != npos && dialect_.needs_second_brace()) {
    const char next = start_ + 1 < source_.size() ? source_[start_ + 1] : '\0';
    if (next == '{' || next == '%' || next == '#') break;
    start_ = source_.find('{', start_ + 1);
  }
  return start_;
}

CodeScanner& CodeScanner::ahead() {
  if (ahead_ == nullptr) ahead_ = std::make_unique<CodeScanner>(source_, dialect_);
  return *ahead_;
}

std::size_t CodeScanner::end_of(std::size_t at, Place place) {
  if (at + 1 >= source_.size() || !may_begin(source_[at])) return 0;
  if (const std::size_t end = end_of_mark(at, place)) return end;
  if (const std::size_t end = end_of_words(at, place)) return end;
  return dialect_.has_known_marks ? end_of_known(at, place) : 0;
}

// What an opener without a closer is read for is bounded by the source's length, however many
// there are.
std::size_t CodeScanner::close_after(std::size_t begin, std::string_view closer,
                                     const CodeSyntax& syntax) {
  const std::size_t budget = 4 * source_.size() + farthest;
  if (lost_ >= budget) return npos;
  const std::size_t end = code_end(source_, begin, closer, syntax, source_.size());
  if (end == npos) lost_ += source_.size() - begin;
  return end;
}

std::size_t CodeScanner::end_of_mark(std::size_t at, Place place) {
  for (const CodeMark& mark : dialect_.marks) {
    if (mark.open.empty()) return 0;
    const bool is_here = (mark.places & place_bit(place)) != 0 &&
                         source_.compare(at, mark.open.size(), mark.open) == 0;
    if (!is_here) continue;
    const std::size_t inner = at + mark.open.size();
    if (inner < source_.size() && mark.not_before.find(source_[inner]) != npos) continue;
    const std::size_t end = close_after(inner, mark.close, mark.syntax);
    if (end != npos) return end;
  }
  return 0;
}

// A name, and what is in brackets after it: @if (a < b) {, @else if (c) {.
std::size_t CodeScanner::end_of_words(std::size_t at, Place place) {
  const CodeWords& words = dialect_.words;
  if (words.sigil == '\0' || source_[at] != words.sigil) return 0;
  if ((words.places & place_bit(place)) == 0) return 0;
  const auto after_blanks = [this](std::size_t from) {
    return std::min(source_.find_first_not_of(blanks, from), source_.size());
  };
  std::size_t end = at + 1;
  for (std::string_view name = first_word(source_.substr(end)); has_word(words.names, name);
       name = first_word(source_.substr(end))) {
    end = after_blanks(end + name.size());
  }
  if (end == at + 1 || end >= source_.size()) return 0;
  if (source_[end] == '(') {
    const std::size_t close = close_after(end + 1, "", words.syntax);
    if (close == npos) return 0;
    end = after_blanks(close);
  }
  return end < source_.size() && source_[end] == '{' ? end + 1 : 0;
}

// The marks of many languages, as far as what is in them looks like code.
std::size_t CodeScanner::end_of_known(std::size_t at, Place place) {
  const char next = source_[at + 1];
  if (source_[at] == '<') {
    if (next == '?') return end_of_question(at, place);
    return next == '%' ? end_of_percent(at, place) : 0;
  }
  if (source_[at] != '{' || place == Place::raw_text || is_quoted_opener(at, place)) return 0;
  switch (next) {
    case '{':
      return end_of_braces(at);
    case '%':
      return end_of_statement(at);
    case '#':
      return end_of_comment(at);
    default:
      return 0;
  }
}

// <?php, <?= and "<? " are code for sure, and the last one of a page need not be closed. A
// declaration of XML ends where a browser ends it.
std::size_t CodeScanner::end_of_question(std::size_t at, Place place) {
  const std::string_view rest = source_.substr(at + 2);
  const bool is_sure = rest.empty() || rest[0] == '=' || is_blank(rest[0]) ||
                       equals_without_case(rest.substr(0, 3), "php");
  if (equals_without_case(rest.substr(0, 3), "xml") && place == Place::text) return 0;
  if (!is_sure && place == Place::raw_text) return 0;
  const std::size_t close = find(php_end, at + 2);
  if (close == npos) return is_sure && place == Place::text ? source_.size() : 0;
  if (is_sure) return end_of_php(at, close, place);
  const bool is_code = is_closed(at, question_begin, 2, close) &&
                       !holds_tags(source_.substr(at + 2, close - at - 2));
  return is_code ? close + 2 : 0;
}

// The first closer may be in a string. What that string goes on to is not looked for very far.
std::size_t CodeScanner::end_of_php(std::size_t at, std::size_t close, Place place) {
  if (at != php_begin_) {
    const std::string_view near = source_.substr(0, close + farthest_php);
    const bool has_strings =
        source_.substr(at, close - at).find_first_of("\"'`/<#") != std::string_view::npos;
    php_begin_ = at;
    php_end_ = has_strings ? php_close(near, at + 2) : close;
    if (php_end_ == near.size() && near.size() < source_.size()) php_end_ = npos;
  }
  const bool is_last = php_end_ == source_.size();
  if (php_end_ == npos || (is_last && place != Place::text)) return close + 2;
  return is_last ? php_end_ : php_end_ + 2;
}

std::size_t CodeScanner::end_of_percent(std::size_t at, Place place) {
  const std::string_view rest = source_.substr(at + 2);
  const bool in_quotes = !rest.empty() && (rest[0] == '"' || rest[0] == '\'');
  if (place == Place::raw_text && in_quotes) return 0;  // a script's own string
  if (begins_with(rest, "--")) {
    const std::size_t close = find(percent_comment_end, at + 2);
    if (close != npos) return close + 4;
  }
  const std::size_t close = find(percent_end, at + 2);
  return close == npos ? 0 : close + 2;
}

// Strings end in the line in which they begin. One with a closer in front of an opener is none: it
// would join two pieces of code. 0 when there is none.
std::size_t CodeScanner::string_end(std::size_t at) const {
  const std::size_t line_end = std::min(source_.find('\n', at), at + farthest);
  const std::string_view line = source_.substr(at, line_end - at);
  for (std::size_t i = 1; i < line.size(); ++i) {
    if (line[i] == '\\') {
      ++i;
    } else if (line[i] == line[0]) {
      const std::string_view string = line.substr(0, i);
      const std::size_t close = std::min(string.find("}}"), string.find("%}"));
      const std::size_t open = std::max(string.rfind("{{") + 1, string.rfind("{%") + 1);
      return close != npos && open > close ? 0 : at + i + 1;
    }
  }
  return 0;
}

// The first closer that is neither in a string nor in braces; npos when the code is not of that
// kind: an apostrophe after a letter is no quote.
std::size_t CodeScanner::close_outside_strings(std::size_t begin, std::string_view closer) const {
  const bool has_braces = closer == "}}";
  const std::size_t limit = std::min(source_.size(), begin + farthest);
  std::size_t depth = 0;
  for (std::size_t i = begin; i < limit;) {
    const char c = source_[i];
    const bool is_quote = (c == '"' || c == '\'') && !is_word_character(source_[i - 1]);
    if (depth == 0 && source_.substr(i, 2) == closer) return i;
    if (c == '{' && i + 1 < limit && (source_[i + 1] == '{' || source_[i + 1] == '%')) return npos;
    if (c == '}' && has_braces && depth-- == 0) return npos;
    if (c == '{' && has_braces) ++depth;
    const std::size_t next = is_quote ? string_end(i) : i + 1;
    if (next == 0) return npos;
    i = next;
  }
  return npos;
}

// The closer of code whose strings and braces may hold another: {{ "}}" }}, {{ {a: {b: 1}} }}. npos
// when they decide nothing.
std::size_t CodeScanner::real_close(std::size_t begin, std::size_t close,
                                    std::string_view closer) const {
  if (close == npos) return npos;
  const std::string_view code = source_.substr(begin, close - begin);
  if (code.find_first_of("\"'{") == npos) return npos;
  return close_outside_strings(begin, closer);
}

// No further opener lies between an opener and its closer.
bool CodeScanner::is_closed(std::size_t at, Wanted opener, std::size_t opener_length,
                            std::size_t close) {
  return close != npos && find(opener, at + opener_length) > close;
}

// A text that tells of the opener itself.
bool CodeScanner::is_quoted_opener(std::size_t at, Place place) const {
  const char before = at > 0 ? source_[at - 1] : '\0';
  const bool is_quote = before == '"' || before == '\'';
  return place == Place::text && is_quote && at + 2 < source_.size() && source_[at + 2] == before;
}

// Three braces are closed by three, if there are as many.
std::size_t CodeScanner::end_of_braces(std::size_t at) {
  const bool is_triple = source_.substr(at, 3) == "{{{";
  const std::string_view inner = without_leading(source_.substr(at + 2, 8), "~- \t\r\n");
  const bool has_dashes = begins_with(inner, "!--") || source_.substr(at + 2, 2) == "--";
  if (has_dashes) {
    const std::size_t close = find(brace_comment_end, at + 4);
    if (close != npos) return close + 4;
  }
  const std::size_t opener_length = is_triple ? 3 : 2;
  std::size_t close = find(brace_end, at + opener_length);
  const std::size_t real = real_close(at + opener_length, close, "}}");
  if (real == npos && !is_closed(at, brace_begin, opener_length, close)) return 0;
  if (real != npos) close = real;
  const bool is_comment = has_dashes || begins_with(inner, "!") || begins_with(inner, "/*");
  if (!is_comment && holds_tags(source_.substr(at + 2, close - at - 2))) return 0;
  const bool is_triple_end = is_triple && close + 2 < source_.size() && source_[close + 2] == '}';
  return close + (is_triple_end ? 3 : 2);
}

// A statement begins with a word or a value, after the marks that take white space away.
std::size_t CodeScanner::end_of_statement(std::size_t at) {
  const std::size_t start = source_.find_first_not_of("-+~ \t\r\n", at + 2);
  if (start == npos) return 0;
  const bool is_start =
      is_letter(source_[start]) || std::string_view("_#/\"'$([:=@").find(source_[start]) != npos;
  if (!is_start) return 0;
  std::size_t close = find(percent_brace_end, at + 2);
  const std::size_t real = real_close(at + 2, close, "%}");
  if (real == npos && !is_closed(at, percent_brace_begin, 2, close)) return 0;
  if (real != npos) close = real;
  return holds_tags(source_.substr(at + 2, close - at - 2)) ? 0 : close + 2;
}

// A comment may hold tags, but begins with a blank then, and an end tag is only its first one where
// all is on one line. "${#" is the shell's, and digits are the arguments of another language.
std::size_t CodeScanner::end_of_comment(std::size_t at) {
  const char next = at + 2 < source_.size() ? source_[at + 2] : '\0';
  if (is_digit(next) || (at > 0 && source_[at - 1] == '$')) return 0;
  const std::size_t close = find(hash_brace_end, at + 2);
  if (!is_closed(at, hash_brace_begin, 2, close)) return 0;
  const std::string_view comment = source_.substr(at + 2, close - at - 2);
  const std::size_t first_tag = find_tag_in(comment);
  if (first_tag == npos) return close + 2;
  const bool is_cut = comment[first_tag + 1] == '/' && comment.find('\n') != std::string_view::npos;
  return (is_blank(next) || next == '-') && !is_cut ? close + 2 : 0;
}

}  // namespace qo
