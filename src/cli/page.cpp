#include "page.h"

#include <algorithm>
#include <iostream>
#include <sstream>
#include <string_view>
#include <vector>

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

}  // namespace

Document try_to_parse(std::string html, bool drop_comments) {
  library_lines().str(std::string());
  _qo_html* document = nullptr;
  parseHtml(document, std::move(html), std::string(), drop_comments, false);
  return Document(document);
}

namespace {

std::size_t count_tags(std::string html) {
  const std::size_t before = tags_met();
  try_to_parse(std::move(html), false);
  return tags_met() - before;
}

std::vector<std::size_t> offsets_of(char c, std::string_view text) {
  std::vector<std::size_t> offsets;
  for (std::size_t i = text.find(c); i != text.npos; i = text.find(c, i + 1)) offsets.push_back(i);
  return offsets;
}

// Where the tag stands at which the parser gave up: the last that it met, so the shortest beginning
// of the page with as many tags ends with its "<". Each "<" is one tag at most: going on by as many
// as are missing never goes too far, and mostly gets there at once; else the search halves.
std::size_t find_refused_tag(const std::string& html) {
  const std::vector<std::size_t> offsets = offsets_of('<', html);
  const auto tags_up_to = [&](std::size_t i) { return count_tags(html.substr(0, offsets[i] + 1)); };
  const std::size_t tags = count_tags(html);
  if (tags == 0 || tags > offsets.size()) return html.size();  // not the page's fault
  std::size_t low = tags - 1;
  std::size_t high = offsets.size() - 1;
  while (low < high) {
    const std::size_t met = tags_up_to(low);
    if (met >= tags) break;
    low = std::min(low + tags - met, high);  // memory that runs out may bend the counts
    const std::size_t middle = low + (high - low) / 2;
    if (tags_up_to(middle) < tags) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return offsets[low];
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
  Document document = try_to_parse(input.text, drop_comments);
  if (document == nullptr) refuse(input);
  return document;
}

}  // namespace cli
