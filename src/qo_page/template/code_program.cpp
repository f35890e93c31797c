// The steps of a program's piece: PHP, Ruby, JavaScript and their like, told apart by their blocks.

#include <qo_page/base/words.h>
#include <qo_page/template/code_steps.h>

namespace qo {

namespace {

using Kind = CodeStep::Kind;

constexpr std::size_t npos = std::string_view::npos;
constexpr std::string_view brace = "{";

// At the start of a statement, with "end" at the end of the block.
constexpr std::string_view openers[] = {
    "if", "unless", "while", "until", "for",     "case",    "begin",  "def", "class", "module",
    "IF", "UNLESS", "WHILE", "FOR",   "FOREACH", "WRAPPER", "FILTER", "TRY", "BLOCK", "SWITCH"};
constexpr std::string_view middles[] = {"else", "elsif", "elseif", "when",  "rescue", "ensure",
                                        "ELSE", "ELSIF", "CASE",   "CATCH", "FINAL"};
constexpr std::string_view brace_middles[] = {"else", "elsif", "elseif",
                                              "elif", "catch", "finally"};
constexpr std::string_view loops[] = {"for", "foreach", "while", "until", "do",
                                      "FOR", "FOREACH", "WHILE", "each"};
constexpr std::string_view php_openers[] = {"if", "for", "foreach", "while", "switch", "declare"};
constexpr std::string_view php_closers[] = {"endif",    "endfor",    "endforeach",
                                            "endwhile", "endswitch", "enddeclare"};

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
    if (skip_comment() || skip_here_document() || skip_string()) return;
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
    is_branch_ = is_one_of(word, brace_middles);
    if (is_branch_) {
      const std::string_view next = first_word(without_leading(rest.substr(word.size()), blanks));
      steps_.push_back({Kind::middle, word, false, false, word == "else" && next != "if"});
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
    if (is_one_of(word, loops)) is_loop_ = true;
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
    if (is_one_of(word, php_closers)) {
      steps_.push_back({Kind::close, word.substr(3)});
    } else if (was_start && (word == "case" || word == "default")) {
      steps_.push_back({Kind::middle, word, false, false, word == "default"});
    } else if (was_start && (word == "else" || word == "elseif")) {
      if (has_colon()) steps_.push_back({Kind::middle, word, false, false, word == "else"});
    } else if (was_start && is_one_of(word, php_openers) && has_colon()) {
      steps_.push_back({Kind::open, word, false, is_one_of(word, loops)});
    }
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
    if (word == any_end || word == "END") {
      steps_.push_back({Kind::close, any_end});
    } else if (was_start && is_one_of(word, middles)) {
      steps_.push_back({Kind::middle, word, false, false, word == "else" || word == "ELSE"});
    } else if (was_start && is_one_of(word, openers)) {
      line_opens_ = true;
      open_by_end(word);
    } else if (word == "fn" || word == "begin" || (word == "do" && !line_opens_)) {
      const bool is_brace = begins_with(without_leading(text_.substr(position_), blanks), brace);
      if (!is_brace) open_by_end(word);
    }
  }

  void open_by_end(std::string_view word) {
    opener_ = steps_.size();
    steps_.push_back({Kind::open, word, true, is_one_of(word, loops)});
  }

  std::string_view text_;
  bool is_php_;
  std::size_t position_ = 0;
  std::vector<CodeStep> steps_;
  bool at_start_ = true;       // of a statement
  bool line_opens_ = false;    // a block that "end" closes; a "do" of its own opens none
  bool is_loop_ = false;       // the statement is one
  bool is_branch_ = false;     // between the "else" and the brace of "} else {"
  bool is_unclosed_[3] = {};   // for each quote: nothing closes the last one
  bool is_unended_ = false;    // the last here-document
  std::size_t opener_ = npos;  // the step that the statement has opened with
  char last_ = '\0';           // the last character that is no blank
};

}  // namespace

std::vector<CodeStep> steps_of_program(std::string_view program, bool is_php) {
  return ProgramReader(program, is_php).read();
}

}  // namespace qo
