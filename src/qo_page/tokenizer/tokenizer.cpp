#include <qo_page/tokenizer/tokenizer.h>

#include <algorithm>

#include <qo_page/base/ascii.h>
#include <qo_page/template/code_steps.h>
#include <qo_page/tokenizer/tag_reader.h>

namespace qo {

namespace {

constexpr std::size_t npos = std::string_view::npos;

}  // namespace

bool Tokenizer::next(Token& token) {
  if (position_ >= source_.size()) return false;
  token.extent = {position_, position_};
  token.is_cut_off = false;
  const bool is_text = raw_.name.empty() ? front_matter(token) : raw_content(token);
  if (!is_text) {
    if (markup(token) == Markup::none) text(token);
  }
  position_ = token.extent.end;
  return true;
}

// The content of an element that has no markup, as a text; false when it is empty.
bool Tokenizer::raw_content(Token& token) {
  const std::size_t end = raw_content_end(source_, position_, raw_, code_, comment_end_);
  raw_ = RawElement();
  if (end == position_) return false;
  token.kind = TokenKind::text;
  token.extent.end = end;
  token.is_cut_off = end == source_.size();
  return true;
}

// The settings or the program in front of a page, between two lines of three dashes, is a text.
bool Tokenizer::front_matter(Token& token) const {
  if (position_ != 0 || !code_.enabled() || source_.substr(0, 3) != "---") return false;
  const std::size_t line_end = source_.find_first_not_of(" \t\r", 3);
  if (line_end == npos || source_[line_end] != '\n') return false;
  const std::size_t last_line = source_.find("\n---", line_end);
  if (last_line == npos) return false;
  const std::size_t end = source_.find_first_not_of(" \t\r", last_line + 4);
  if (end != npos && source_[end] != '\n') return false;
  token.kind = TokenKind::text;
  token.extent.end = last_line + 4;
  return true;
}

// A run of text ends where markup begins.
void Tokenizer::text(Token& token) {
  token.kind = TokenKind::text;
  std::size_t end = position_;
  do {
    end = next_markup(end + 1);
  } while (end != npos && !may_begin_markup(end));
  token.extent.end = std::min(end, source_.size());
}

// The next "<" that is not within code.
std::size_t Tokenizer::next_markup(std::size_t from) {
  // The first character was no markup, but code may begin with it.
  std::size_t brace = code_.next_start(from - 1);
  std::size_t found = source_.find('<', from);
  while (brace < found) {
    const std::size_t end = code_.end_of(brace, CodeScanner::Place::text);
    if (end > found) found = source_.find('<', end);
    brace = code_.next_start(end == 0 ? brace + 1 : end);
  }
  return found;
}

// Whether a token that is no text begins at a "<", unless the end of the source cuts it off.
bool Tokenizer::may_begin_markup(std::size_t i) const {
  const char c = at(i + 1);
  if (is_letter(c) || c == '!' || c == '?') return true;
  if (c == '/') return i + 2 < source_.size();
  return code_.enabled() && (c == '%' || c == '{' || c == '<');
}

Tokenizer::Markup Tokenizer::markup(Token& token) {
  if (source_[position_] != '<') return Markup::none;
  switch (at(position_ + 1)) {
    case '!':
      return declaration(token);
    case '?':
      return question(token);
    case '%':
      return percent(token);
    case '/':
      return tag(token, TokenKind::end_tag, position_ + 2);
    default:
      return tag(token, TokenKind::start_tag, position_ + 1);
  }
}

Tokenizer::Markup Tokenizer::declaration(Token& token) {
  const std::string_view rest = source_.substr(position_ + 2);
  if (rest.substr(0, 2) == "--") {
    comment(token);
  } else if (equals_without_case(rest.substr(0, 7), "doctype")) {
    return until(token, TokenKind::doctype, position_ + 9, ">");
  } else if (cdata_ && rest.substr(0, 7) == "[CDATA[") {
    return until(token, TokenKind::cdata, position_ + 9, "]]>");
  } else {
    bogus_comment(token, position_ + 2);
  }
  return Markup::other;
}

// Ends with "-->" or "--!>", or at once with "<!-->" and "<!--->".
void Tokenizer::comment(Token& token) {
  token.kind = TokenKind::comment;
  const std::size_t begin = position_ + 4;
  for (std::size_t i = source_.find('>', begin); i != npos; i = source_.find('>', i + 1)) {
    const std::string_view before = source_.substr(begin, i - begin);
    const auto ends_with = [before](std::string_view mark) {
      return before.size() >= mark.size() && before.substr(before.size() - mark.size()) == mark;
    };
    const bool is_short = before.empty() || before == "-";
    if (!is_short && !ends_with("--") && !ends_with("--!")) continue;
    const std::size_t mark = is_short ? before.size() : ends_with("--") ? 2 : 3;
    token.content = {begin, i - mark};
    token.extent.end = i + 1;
    return;
  }
  token.content = {begin, source_.size()};
  token.extent.end = source_.size();
  token.is_cut_off = true;
}

void Tokenizer::bogus_comment(Token& token, std::size_t content_begin) {
  until(token, TokenKind::comment, content_begin, ">");
}

// What ends with a mark, or with the source.
Tokenizer::Markup Tokenizer::until(Token& token, TokenKind kind, std::size_t content_begin,
                                   std::string_view closer) {
  const std::size_t close = source_.find(closer, content_begin);
  token.kind = kind;
  token.content = {content_begin, std::min(close, source_.size())};
  token.extent.end = close == npos ? source_.size() : close + closer.size();
  token.is_cut_off = close == npos;
  return Markup::other;
}

// Code, or what a browser takes for a comment. A declaration of XML is such a comment, too, but
// counts as code where templates do.
Tokenizer::Markup Tokenizer::question(Token& token) {
  const std::size_t end = code_.end_of(position_, CodeScanner::Place::text);
  if (end == 0) {
    bogus_comment(token, position_ + 1);
    const bool is_whole =
        source_[token.content.end - 1] == '?' && token.content.end > position_ + 2;
    if (code_.enabled() && is_whole) token.kind = TokenKind::code;
  } else {
    token.kind = TokenKind::code;
    token.extent.end = end;
    token.is_cut_off = source_.substr(end - 2, 2) != "?>";
  }
  return Markup::other;
}

Tokenizer::Markup Tokenizer::percent(Token& token) {
  const std::size_t end = code_.end_of(position_, CodeScanner::Place::text);
  if (end == 0) return Markup::none;
  token.kind = TokenKind::code;
  token.extent.end = end;
  return Markup::other;
}

// A name begins with a letter, or is code that stands for one. "</" before anything else begins a
// comment, "<" is text.
Tokenizer::Markup Tokenizer::tag(Token& token, TokenKind kind, std::size_t name_begin) {
  const bool is_end = kind == TokenKind::end_tag;
  if (!is_letter(at(name_begin))) {
    if (is_end && at(name_begin) == '\0' && name_begin >= source_.size()) return Markup::none;
    const std::size_t end =
        name_begin < source_.size() ? code_.end_of(name_begin, CodeScanner::Place::tag) : 0;
    const bool is_name = end != 0 && role_of(source_.substr(name_begin, end - name_begin),
                                             code_.dialect()) == CodeRole::output;
    if (!is_name) {
      if (is_end) bogus_comment(token, name_begin);
      return is_end ? Markup::other : Markup::none;
    }
  }
  token.kind = kind;
  if (TagReader(source_, code_, token, reader_).read(name_begin)) return Markup::tag;
  token.kind = TokenKind::text;
  token.extent.end = source_.size();
  token.is_cut_off = true;
  return Markup::other;
}

}  // namespace qo
