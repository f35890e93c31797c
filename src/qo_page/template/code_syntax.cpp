#include <qo_page/template/code_syntax.h>

#include <algorithm>
#include <string>

#include <qo_page/base/words.h>

namespace qo {

namespace {

constexpr std::size_t npos = std::string_view::npos;

constexpr char closer_of(char bracket) {
  return bracket == '(' ? ')' : bracket == '[' ? ']' : bracket == '{' ? '}' : '\0';
}

constexpr bool closes_bracket(char c) {
  return c == ')' || c == ']' || c == '}';
}

// After these, a slash divides; after anything else it begins a regular expression.
constexpr bool ends_operand(char c) {
  return is_word_character(c) || c == ')' || c == ']' || c == '}' || c == '$' || c == '"' ||
         c == '\'' || c == '`';
}

class CodeReader {
 public:
  CodeReader(std::string_view source, std::size_t begin, std::string_view closer,
             const CodeSyntax& syntax)
      : source_(source), closer_(closer), syntax_(syntax), position_(begin) {
    if (closer.empty()) open_ += closer_of(source[begin - 1]);
  }

  std::size_t read() {
    while (position_ < source_.size()) {
      if (in_template_text()) {
        template_text();
        continue;
      }
      if (open_.empty() && begins_here(closer_)) return position_ + closer_.size();
      if (!skip_comment() && !skip_string() && !skip_regex()) bracket();
      if (closer_.empty() && open_.empty()) return position_;
    }
    return npos;
  }

 private:
  bool begins_here(std::string_view mark) const {
    return !mark.empty() && source_.compare(position_, mark.size(), mark) == 0;
  }

  bool in_template_text() const { return !open_.empty() && open_.back() == '`'; }

  void template_text() {
    const char c = source_[position_];
    if (c == '`') {
      open_.pop_back();
      last_ = c;
    } else if (c == '\\') {
      ++position_;
    } else if (begins_here("${")) {
      open_ += '}';
      ++position_;
    }
    ++position_;
  }

  bool skip_comment() {
    if (begins_here(syntax_.line_comment)) {
      position_ = std::min(source_.find('\n', position_), source_.size());
      return true;
    }
    if (!begins_here(syntax_.comment_begin)) return false;
    const std::size_t from = position_ + syntax_.comment_begin.size();
    const std::size_t end = source_.find(syntax_.comment_end, from);
    position_ = end == npos ? source_.size() : end + syntax_.comment_end.size();
    return true;
  }

  bool skip_string() {
    const char quote = source_[position_];
    if (quote == '`' && syntax_.has_template_text) {
      open_ += quote;
      ++position_;
      return true;
    }
    if (syntax_.quotes.find(quote) == npos) return false;
    skip_until(quote);
    return true;
  }

  // To what ends a string or regular expression.
  void skip_until(char end) {
    const bool has_escapes = syntax_.has_escapes && end != '`';
    for (++position_; position_ < source_.size() && source_[position_] != end; ++position_) {
      if (has_escapes && source_[position_] == '\\') ++position_;
    }
    position_ = std::min(position_ + 1, source_.size());
    last_ = end;
  }

  bool skip_regex() {
    if (!syntax_.has_regexes || source_[position_] != '/' || ends_operand(last_)) return false;
    bool in_class = false;
    for (std::size_t i = position_ + 1; i < source_.size() && source_[i] != '\n'; ++i) {
      const char c = source_[i];
      if (c == '\\') {
        ++i;
      } else if (c == '/' && !in_class) {
        position_ = i + 1;
        last_ = ')';
        return true;
      } else if (c == '[' || c == ']') {
        in_class = c == '[';
      }
    }
    return false;
  }

  void bracket() {
    const char c = source_[position_++];
    if (!is_blank(c)) last_ = c;
    if (!syntax_.has_brackets) return;
    if (closer_of(c) != '\0') {
      open_ += closer_of(c);
    } else if (closes_bracket(c) && !open_.empty() && open_.back() == c) {
      open_.pop_back();
    }
  }

  std::string_view source_;
  std::string_view closer_;
  const CodeSyntax& syntax_;
  std::size_t position_;
  std::string open_;  // what closes the brackets that are open, and ` in template text
  char last_ = '\0';  // the last character that is no blank
};

}  // namespace

std::size_t code_end(std::string_view source, std::size_t begin, std::string_view closer,
                     const CodeSyntax& syntax, std::size_t limit) {
  const std::string_view text = source.substr(0, begin + std::min(limit, source.size() - begin));
  return CodeReader(text, begin, closer, syntax).read();
}

}  // namespace qo
