#include <qo_page/template/php_code.h>

#include <algorithm>

#include <qo_page/base/words.h>

namespace qo {

namespace {

constexpr std::size_t npos = std::string_view::npos;

std::size_t after(std::string_view source, std::string_view mark, std::size_t from) {
  const std::size_t found = source.find(mark, from);
  return found == npos ? npos : found + mark.size();
}

std::size_t after_string(std::string_view source, std::size_t at) {
  for (std::size_t i = at + 1; i < source.size(); ++i) {
    if (source[i] == '\\') {
      ++i;
    } else if (source[i] == source[at]) {
      return i + 1;
    }
  }
  return npos;
}

// <<<NAME, or with quotes around the name, to the line that begins with it.
std::size_t after_heredoc(std::string_view source, std::size_t at) {
  const std::size_t begin = source.find_first_not_of(" \t\"'", at + 3);
  if (begin == npos) return npos;
  const std::string_view name = first_word(source.substr(begin));
  if (name.empty() || is_digit(name[0])) return at + 3;
  for (std::size_t line = source.find('\n', begin); line != npos;
       line = source.find('\n', line + 1)) {
    const std::size_t start = source.find_first_not_of(" \t", line + 1);
    if (start == npos) return npos;
    if (first_word(source.substr(start)) == name) return start + name.size();
  }
  return npos;
}

// A comment of one line ends with the code, too.
std::size_t after_line_comment(std::string_view source, std::size_t at) {
  return std::min({source.find('\n', at), source.find("?>", at), source.size()});
}

}  // namespace

std::size_t php_close(std::string_view source, std::size_t begin) {
  std::size_t i = begin;
  while (i < source.size()) {
    const std::string_view pair = source.substr(i, 2);
    const char c = pair[0];
    if (pair == "?>") return i;
    if (c == '"' || c == '\'' || c == '`') {
      i = after_string(source, i);
    } else if (pair == "/*") {
      i = after(source, "*/", i + 2);
    } else if (pair == "//" || (c == '#' && pair != "#[")) {
      i = after_line_comment(source, i);
    } else if (source.substr(i, 3) == "<<<") {
      i = after_heredoc(source, i);
    } else {
      ++i;
    }
  }
  return i == npos ? npos : source.size();
}

}  // namespace qo
