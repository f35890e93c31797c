#include "page.h"

#include <algorithm>
#include <iostream>
#include <sstream>

#include "host.h"
#include "text.h"

namespace cli {

namespace {

// What the library wrote in the last parse. Never destroyed: the standard streams are flushed into
// it when the process ends.
std::ostringstream& library_lines() {
  static std::ostringstream* const lines = new std::ostringstream;
  return *lines;
}

Document parse(std::string html, bool drop_comments) {
  library_lines().str(std::string());
  _qo_html* document = nullptr;
  parseHtml(document, std::move(html), std::string(), drop_comments, false);
  return Document(document);
}

long count_tags(std::string html) {
  const long before = tags_met();
  parse(std::move(html), false);
  return tags_met() - before;
}

// Where the tag stands at which the parser gave up: the last that it met. Each "<" is one tag at
// most, so going on by as many "<" as tags are missing never goes too far.
std::size_t find_refused_tag(const std::string& html) {
  const long tags = count_tags(html);
  std::size_t place = std::string::npos;
  for (long missing = tags; missing > 0; missing = tags - count_tags(html.substr(0, place + 1))) {
    for (; missing > 0; --missing) place = html.find('<', place + 1);
  }
  return std::min(place, html.size());
}

// The library's line on a name that it refuses or on memory that ran out; empty when content
// without an end is the reason, on which there is no line.
std::string reason_of_refusal() {
  const std::string lines = library_lines().str();
  if (lines.empty()) return lines;
  const std::size_t start = lines.rfind('\n', lines.size() - 2) + 1;  // npos + 1 is 0
  const std::string last = lines.substr(start, lines.size() - 1 - start);
  const bool is_reason = last.find("invalid tag name") == 0 || last.find("exception in") == 0;
  return is_reason ? last : std::string();
}

constexpr std::size_t excerpt_length = 30;
constexpr std::size_t reason_length = 200;  // a name may be as long as the page

[[noreturn]] void refuse(const Input& input) {
  const std::string reason = reason_of_refusal();
  const std::size_t tag = find_refused_tag(input.text);
  const std::string_view rest = std::string_view(input.text).substr(tag);
  const std::string_view first_line = rest.substr(0, rest.find('\n'));
  throw Failure(input.name + ":" + place_of(input.text, tag) + ": refused: " +
                (reason.empty() ? "no end to " + quoted(first_line, excerpt_length)
                                : reason.substr(0, reason_length)));
}

}  // namespace

void silence_library() {
  std::cout.rdbuf(library_lines().rdbuf());
  std::cerr.rdbuf(library_lines().rdbuf());
}

Document parse_page(const Input& input, bool drop_comments) {
  Document document = parse(input.text, drop_comments);
  if (document == nullptr) refuse(input);
  return document;
}

}  // namespace cli
