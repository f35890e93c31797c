#include <qo_page/tokenizer/tag_blocks.h>

#include <qo_page/base/words.h>

namespace qo {

namespace {

// A statement's block ends with a word of its own; what ends those of other languages is one to us.
std::string_view word_of(std::string_view code) {
  if (!begins_with(code, "{%")) return {};
  return first_word(without_leading(code.substr(2), "-+~ \t\r\n"));
}

}  // namespace

TagBlocks::TagBlocks(std::string_view source, std::size_t begin, CodeScanner& code) {
  char quote = '\0';
  for (std::size_t i = begin; i < source.size();) {
    const char c = source[i];
    const bool may_be_code = c == '{' || c == '<';
    const std::size_t end = may_be_code ? code.end_of(i, CodeScanner::Place::tag) : 0;
    if (end != 0) {
      add(source.substr(i, end - i), i);
      i = end;
      continue;
    }
    if (c == '>' && quote == '\0') return;
    const bool begins_value = (c == '"' || c == '\'') && source[i - 1] == '=';
    if (quote == '\0' && begins_value) {
      quote = c;
    } else if (c == quote) {
      quote = '\0';
    }
    ++i;
  }
}

void TagBlocks::add(std::string_view code, std::size_t offset) {
  if (role_of(code) == CodeRole::closing) last_ends_[std::string(word_of(code))] = offset;
}

bool TagBlocks::ends_after(std::string_view opener, std::size_t offset) const {
  const std::string_view word = word_of(opener);
  const auto end = last_ends_.find(word.empty() ? std::string() : "end" + std::string(word));
  return end != last_ends_.end() && end->second >= offset;
}

}  // namespace qo
