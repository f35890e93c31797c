// The steps of a program's piece: PHP, Ruby, JavaScript and their like, told apart by their blocks.

#include <qo_page/base/words.h>
#include <qo_page/template/block_words.h>
#include <qo_page/template/code_steps.h>

namespace qo {

namespace {

using Kind = CodeStep::Kind;

constexpr std::size_t npos = std::string_view::npos;
constexpr std::string_view brace = "{";

class ProgramReader {
 public:
  ProgramReader(std::string_view program, bool is_php) : text_(program), is_php_(is_php) {}

  std::vector<CodeStep> read() {
    position_ = text_.size() - without_leading(text_, "=-_ \t\r\n%").size();
    while (position_ < text_.size()) item();
    return std::move(steps_);
  }

 private:
  char at(std::size_t i) const { return i < text_.size() ? text_[i] : '\0'; }

  void item() {
    const char c = text_[position_];
    if (is_word_character(c)) return word();
    if (skip_comment() || skip_here_document() || skip_string() || skip_expression()) return;
    switch (c) {
      case '\n':
        begin_line();
        break;
      case ';':
        begin_statement();
        is_branch_ = false;
        break;
      case '{':
        open_brace();
        break;
      case '}':
        close_brace();
        break;
      case '\\':
        ++position_;
        break;
      default:
        if (!is_blank(c)) at_start_ = c == '=';
    }
    if (!is_blank(c)) last_ = c;
    ++position_;
  }

  void begin_line() {
    at_start_ = true;
    line_opens_ = false;
  }

  void begin_statement() {
    begin_line();
    opener_ = npos;
    is_loop_ = false;
  }

  // --- What holds no steps ---

  bool skip_comment() {
    const std::string_view rest = text_.substr(position_, 2);
    const char before = position_ == 0 ? '\n' : text_[position_ - 1];
    if (rest == "/*") {
      const std::size_t end = text_.find("*/", position_ + 2);
      position_ = end == npos ? text_.size() : end + 2;
      return true;
    }
    const bool is_hash = rest[0] == '#' && rest != "#[" && (is_blank(before) || at_start_);
    const bool is_slashes = rest == "//" && (is_php_ || at_start_);
    if (!is_hash && !is_slashes) return false;
    position_ = std::min(text_.find('\n', position_), text_.size());
    return true;
  }

  // <<<NAME, up to a line that begins with the name.
  bool skip_here_document() {
    if (!is_php_ || is_unended_ || text_.substr(position_, 3) != "<<<") return false;
    const std::string_view name =
        first_word(without_leading(text_.substr(position_ + 3), " \t'\""));
    if (name.empty()) return false;
    std::size_t line = text_.find('\n', position_);
    while (line != npos) {
      const std::string_view rest = text_.substr(line + 1);
      const std::size_t indent = std::min(rest.find_first_not_of(" \t"), rest.size());
      if (first_word(rest.substr(indent)) == name) {
        position_ = line + 1 + indent + name.size();
        return true;
      }
      line = text_.find('\n', line + 1);
    }
    is_unended_ = true;
    return false;
  }

  // A quote that nothing closes is a plain character.
  bool skip_string() {
    const std::size_t kind = std::string_view("\"'`").find(text_[position_]);
    if (kind == npos) return false;
    at_start_ = false;
    last_ = text_[position_];
    std::size_t end = is_unclosed_[kind] ? npos : position_ + 1;
    while (end < text_.size() && text_[end] != text_[position_]) end += text_[end] == '\\' ? 2 : 1;
    is_unclosed_[kind] = end >= text_.size();
    position_ = is_unclosed_[kind] ? position_ + 1 : end + 1;
    return true;
  }

  // A regular expression: a slash that divides nothing, up to the next one in its line.
  bool skip_expression() {
    const bool divides =
        is_word_character(last_) || std::string_view(")]}\"'`").find(last_) != npos;
    if (is_php_ || text_[position_] != '/' || divides || position_ < no_expression_until_) {
      return false;
    }
    bool in_class = false;
    std::size_t i = position_ + 1;
    for (; i < text_.size() && text_[i] != '\n'; ++i) {
      const char c = text_[i];
      if (c == '/' && !in_class) break;
      if (c == '\\') ++i;
      if (c == '[') in_class = true;
      if (c == ']') in_class = false;
    }
    if (at(i) != '/') {
      no_expression_until_ = i;
      return false;
    }
    at_start_ = false;
    last_ = '"';
    position_ = i + 1;
    return true;
  }

  // --- Braces ---

  // "if (x) {" is no statement that "end" closes.
  void open_brace() {
    const std::string_view rest = without_leading(text_.substr(position_ + 1), " \t");
    if (opener_ != npos && last_ == ')' && !begins_with(rest, "|")) {
      steps_.erase(steps_.begin() + static_cast<std::ptrdiff_t>(opener_));
    }
    if (!is_branch_) steps_.push_back({Kind::open, brace, false, is_loop_});
    is_branch_ = false;
    begin_statement();
  }

  // "} else {" is one branch after the other.
  void close_brace() {
    const std::string_view rest = without_leading(text_.substr(position_ + 1), blanks);
    const std::string_view word = first_word(rest);
    const BlockWord* const known =
        find_block_word(word, is_php_ ? languages::php | languages::brace : languages::brace);
    is_branch_ = known != nullptr && (known->languages & languages::brace) != 0;
    if (is_branch_) {
      const std::string_view next = first_word(without_leading(rest.substr(word.size()), blanks));
      CodeStep step = known->step();
      step.is_default = step.is_default && !equals_without_case(next, "if");
      steps_.push_back(step);
    } else {
      steps_.push_back({Kind::close, brace});
    }
    begin_statement();
  }

  // --- Words ---

  void word() {
    const std::size_t begin = position_;
    const std::string_view word = first_word(text_.substr(begin));
    position_ += word.size();
    const bool was_start = at_start_;
    at_start_ = false;
    last_ = 'a';
    if (is_name(begin)) return;
    if (is_loop_word(word, is_php_ ? languages::php : languages::anywhere)) is_loop_ = true;
    if (is_branch_) return;
    if (is_php_) {
      php_word(word, was_start);
    } else {
      other_word(word, was_start);
    }
  }

  // A variable, a member or a key, whatever the word.
  bool is_name(std::size_t begin) const {
    const char before = begin == 0 ? '\0' : text_[begin - 1];
    const bool is_member = before == '>' && begin > 1 && text_[begin - 2] == '-';
    const bool is_key = !is_php_ && at(position_) == ':' && at(position_ + 1) != ':';
    return is_member || is_key || std::string_view(".@$:%").find(before) != npos;
  }

  void php_word(std::string_view word, bool was_start) {
    if (word.size() > any_end.size() && equals_without_case(word.substr(0, 3), any_end)) {
      const BlockWord* const block = find_block_word(word.substr(3), languages::php);
      if (block != nullptr && block->kind == Kind::open) {
        steps_.push_back({Kind::close, block->word});
      }
      return;
    }
    const BlockWord* const known = was_start ? find_block_word(word, languages::php) : nullptr;
    if (known == nullptr) return;
    const bool is_label = equals_without_case(word, "case") || equals_without_case(word, "default");
    if (is_label || has_colon()) steps_.push_back(known->step());
  }

  // Whether ":" comes next, after a condition if there is one.
  bool has_colon() {
    std::size_t depth = 0;
    while (position_ < text_.size()) {
      const char c = text_[position_];
      if (skip_comment() || skip_string()) continue;
      if (depth == 0 && c != '(' && !is_blank(c)) return c == ':' && at(position_ + 1) != ':';
      if (c == '(') ++depth;
      if (c == ')') --depth;
      last_ = c;
      ++position_;
    }
    return false;
  }

  void other_word(std::string_view word, bool was_start) {
    if (was_start && is_basic(word)) return basic_word(word);
    if (equals_without_case(word, "then")) return basic_then();
    const BlockWord* const known = find_block_word(word, languages::script | languages::toolkit);
    if (known == nullptr) return;
    const bool is_inner = word == "fn" || word == "begin" || word == "do";
    if (known->kind == Kind::close) {
      steps_.push_back(known->step());
    } else if (is_inner) {
      const bool is_brace = begins_with(without_leading(text_.substr(position_), blanks), brace);
      if (!is_brace && !(word == "do" && line_opens_)) open(*known);
    } else if (was_start && known->kind == Kind::middle) {
      steps_.push_back(known->step());
    } else if (was_start) {
      line_opens_ = true;
      open(*known);
    }
  }

  void open(const BlockWord& word) {
    opener_ = steps_.size();
    steps_.push_back(word.step());
  }

  // --- Words of Basic ---

  // "For Each", as well as "for each": what Ruby has itself is told apart by what follows.
  bool is_basic(std::string_view word) const {
    const bool is_capital =
        word.size() > 1 && word[0] >= 'A' && word[0] <= 'Z' && word[1] >= 'a' && word[1] <= 'z';
    if (is_capital || word == "wend") return find_block_word(word, languages::basic) != nullptr;
    const std::string_view line = text_.substr(position_);
    const std::string_view rest = without_leading(line, " \t");
    const std::string_view next = first_word(rest);
    const bool is_condition = next == "while" || next == "until";
    if (word == "for") {
      const std::string_view after = without_leading(rest.substr(next.size()), " \t");
      return next == "each" || (!next.empty() && begins_with(after, "="));
    }
    if (word == "do") return is_condition;
    if (word == "select") return next == "case";
    const bool is_alone = rest.empty() || is_blank(rest[0]);
    return (word == "next" && is_alone) || (word == "loop" && (is_alone || is_condition));
  }

  void basic_word(std::string_view word) {
    const BlockWord* const known = find_block_word(word, languages::basic);
    line_opens_ = true;
    if (known->kind == Kind::open) return open(*known);
    CodeStep step = known->step();
    step.is_sure = word[0] != lower(word[0]);
    const std::string_view next = first_word(without_leading(text_.substr(position_), " \t"));
    const bool is_default_case =
        equals_without_case(word, "case") && equals_without_case(next, "else");
    step.is_default = step.is_default || is_default_case;
    steps_.push_back(step);
  }

  // "If a Then b" is a whole statement.
  void basic_then() {
    if (opener_ == npos) return;
    const std::string_view rest = text_.substr(position_);
    const std::string_view line = rest.substr(0, rest.find_first_of(";\n"));
    const std::string_view then = without_leading(line, blanks);
    const bool goes_on = !then.empty() && then[0] != '\'' && lower(then).find(any_end) == npos;
    if (goes_on) steps_.erase(steps_.begin() + static_cast<std::ptrdiff_t>(opener_));
    opener_ = npos;
  }

  std::string_view text_;
  bool is_php_;
  std::size_t position_ = 0;
  std::vector<CodeStep> steps_;
  bool at_start_ = true;                 // of a statement
  bool line_opens_ = false;              // a block that "end" closes; a "do" of its own opens none
  bool is_loop_ = false;                 // the statement is one
  bool is_branch_ = false;               // between the "else" and the brace of "} else {"
  bool is_unclosed_[3] = {};             // for each quote: nothing closes the last one
  bool is_unended_ = false;              // the last here-document
  std::size_t no_expression_until_ = 0;  // a regular expression that its line cuts off is none
  std::size_t opener_ = npos;            // the step that the statement has opened with
  char last_ = '\0';                     // the last character that is no blank
};

}  // namespace

std::vector<CodeStep> steps_of_program(std::string_view program, bool is_php) {
  return ProgramReader(program, is_php).read();
}

}  // namespace qo
