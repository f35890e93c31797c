#include <qo_page/tokenizer/brackets.h>

#include <algorithm>
#include <string>
#include <vector>

#include <qo_page/base/words.h>

namespace qo {

namespace {

constexpr std::size_t npos = std::string_view::npos;
constexpr std::size_t farthest = 2048;  // how far a bracket is followed: nothing is read forever

constexpr char closer_of(char opener) {
  return opener == '(' ? ')' : opener == '[' ? ']' : '}';
}

constexpr bool closes_bracket(char c) {
  return c == ')' || c == ']' || c == '}';
}

// Reads code from bracket to bracket.
class BracketReader {
 public:
  BracketReader(std::string_view source, std::size_t end, CodeScanner& code)
      : source_(source), end_(end), code_(code) {}

  // The offset after what is at `at`: a piece of template code, a string, a comment or a character.
  // npos when the piece has no end.
  std::size_t next(std::size_t at) {
    const char c = source_[at];
    const std::size_t code_end =
        c == '{' || c == '<' ? code_.end_of(at, CodeScanner::Place::tag) : 0;
    if (code_end != 0) return code_end;
    if (c == '`') return string_end(at);
    if (open_.empty()) return bracket(at);
    const bool is_apostrophe = c == '\'' && is_word_character(source_[at - 1]);
    if (c == '"' || (c == '\'' && !is_apostrophe)) return string_end(at);
    const std::string_view mark = source_.substr(at, 2);
    if (mark == "/*") return after("*/", at + 2);
    if (mark == "//" && source_[at - 1] != ':') return after("\n", at + 2);
    return bracket(at);
  }

  bool is_open() const { return !open_.empty(); }
  bool is_crossed() const { return is_crossed_; }
  std::size_t first_open() const { return open_.empty() ? npos : open_.front(); }

 private:
  std::size_t bracket(std::size_t at) {
    const char c = source_[at];
    if (opens_bracket(c)) {
      open_.push_back(at);
    } else if (closes_bracket(c) && !open_.empty()) {
      is_crossed_ = is_crossed_ || closer_of(source_[open_.back()]) != c;
      open_.pop_back();
    }
    return at + 1;
  }

  std::size_t string_end(std::size_t at) {
    for (std::size_t i = at + 1; i < end_; ++i) {
      if (source_[i] == '\\') {
        ++i;
      } else if (source_[i] == source_[at]) {
        return i + 1;
      }
    }
    open_.push_back(at);
    return npos;
  }

  std::size_t after(std::string_view mark, std::size_t from) {
    const std::size_t found = source_.substr(0, end_).find(mark, from);
    return found == npos ? npos : found + mark.size();
  }

  std::string_view source_;
  std::size_t end_;
  CodeScanner& code_;
  std::vector<std::size_t> open_;
  bool is_crossed_ = false;
};

bool is_template_code(std::string_view source, std::size_t at, CodeScanner& code) {
  const bool may_be = source[at] == '{' || source[at] == '<';
  return may_be && code.end_of(at, CodeScanner::Place::tag) != 0;
}

}  // namespace

BracketEnd bracket_end(std::string_view source, std::size_t at, CodeScanner& code) {
  const std::size_t limit = std::min(source.size(), at + farthest);
  BracketReader reader(source, limit, code);
  BracketEnd found{0, false, false, false};
  for (std::size_t i = at; i < limit;) {
    const bool is_code = is_template_code(source, i, code);
    const std::size_t next = reader.next(i);
    if (next == npos || reader.is_crossed()) break;
    const std::string_view piece = is_code ? std::string_view() : source.substr(i, next - i);
    found.has_blank = found.has_blank || piece.find_first_of(blanks) != npos;
    found.has_tag_end = found.has_tag_end || piece.find('>') != npos;
    found.has_name_end = found.has_name_end || piece.find_first_of("/=") != npos;
    i = next;
    if (!reader.is_open()) {
      found.end = i;
      break;
    }
  }
  return found;
}

std::size_t open_bracket(std::string_view source, std::size_t begin, std::size_t end,
                         CodeScanner& code) {
  BracketReader reader(source, end, code);
  for (std::size_t i = begin; i < end;) i = reader.next(i);
  return reader.first_open();
}

}  // namespace qo
