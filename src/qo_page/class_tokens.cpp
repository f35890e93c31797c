#include <qo_page/class_tokens.h>

#include <qo_page/ascii.h>

namespace qo {

std::vector<Range> class_tokens(std::string_view source, Range value, CodeScanner& code) {
  std::vector<Range> tokens;
  std::size_t begin = value.begin;  // of the token, if there is one
  std::size_t i = value.begin;
  const auto end_token = [&] {
    if (begin != i) tokens.push_back({begin, i});
  };
  while (i < value.end) {
    const bool may_be_code = source[i] == '{' || source[i] == '<';
    const std::size_t end = may_be_code ? code.end_of(i, CodeScanner::Place::tag) : 0;
    if (end != 0 && role_of(source.substr(i, end - i)) != CodeRole::output) {
      end_token();
      begin = i = end;
    } else if (end != 0) {
      i = end;
    } else if (is_blank(source[i])) {
      end_token();
      begin = ++i;
    } else {
      ++i;
    }
  }
  end_token();
  return tokens;
}

}  // namespace qo
