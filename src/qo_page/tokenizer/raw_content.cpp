#include <qo_page/tokenizer/raw_content.h>

#include <algorithm>

#include <qo_page/base/ascii.h>

namespace qo {

namespace {

// Whether that name, and the end of a name, follow at `at`.
bool has_name(std::string_view source, std::size_t at, std::string_view name) {
  if (at + name.size() >= source.size()) return false;
  const char after = source[at + name.size()];
  return equals_without_case(source.substr(at, name.size()), name) &&
         (is_blank(after) || after == '/' || after == '>');
}

bool is_end_tag(std::string_view source, std::size_t at, std::string_view name) {
  return source.substr(at, 2) == "</" && has_name(source, at + 2, name);
}

// The next "<" from `from` on, in front of `limit`, that begins no code; `limit` when there is
// none.
std::size_t next_angle(std::string_view source, std::size_t from, std::size_t limit,
                       CodeScanner& code) {
  std::size_t at = source.find('<', from);
  while (at < limit) {
    const std::size_t end = code.end_of(at, CodeScanner::Place::raw_text);
    if (end == 0) return at;
    at = source.find('<', end);
  }
  return limit;
}

// Within "<!--" and "-->", a script may hold whole scripts: an end tag then ends the inner one.
// Gives the end tag of the outer one, or `limit`.
std::size_t end_in_comment(std::string_view source, std::size_t begin, std::size_t limit,
                           CodeScanner& code) {
  constexpr std::string_view name = "script";
  bool in_inner = false;
  std::size_t at = begin;
  while ((at = next_angle(source, at, limit, code)) < limit) {
    if (is_end_tag(source, at, name)) {
      if (!in_inner) return at;
      in_inner = false;
    } else if (has_name(source, at + 1, name)) {
      in_inner = true;
    }
    ++at;
  }
  return limit;
}

std::size_t script_end(std::string_view source, std::size_t begin, CodeScanner& code,
                       Finder& comment_ends) {
  constexpr std::string_view name = "script";
  std::size_t at = begin;
  while ((at = next_angle(source, at, source.size(), code)) < source.size()) {
    if (is_end_tag(source, at, name)) return at;
    if (source.substr(at, 4) != "<!--") {
      ++at;
      continue;
    }
    const std::size_t comment_end = std::min(comment_ends.find(source, at + 2), source.size());
    const std::size_t end = end_in_comment(source, at + 4, comment_end, code);
    if (end < comment_end) return end;
    at = comment_end;
  }
  return source.size();
}

}  // namespace

std::size_t raw_content_end(std::string_view source, std::size_t begin, const RawElement& element,
                            CodeScanner& code, Finder& comment_end) {
  if (element.is_plaintext) return source.size();
  if (element.is_script) return script_end(source, begin, code, comment_end);
  std::size_t at = begin;
  while ((at = next_angle(source, at, source.size(), code)) < source.size()) {
    if (is_end_tag(source, at, element.name)) return at;
    ++at;
  }
  return source.size();
}

}  // namespace qo
