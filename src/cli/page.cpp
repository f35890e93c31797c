#include "page.h"

#include <iostream>
#include <new>
#include <streambuf>
#include <string_view>
#include <utility>
#include <vector>

#include "host.h"
#include "text.h"

namespace cli {

namespace {

// Takes what the library writes to a standard stream: keeps the beginning of the last line, and
// whether any told of memory that ran out. Allocates nothing.
class LibraryLines : public std::streambuf {
 public:
  // `shortage`: the line that tells; empty: any does.
  explicit LibraryLines(std::string_view shortage) : shortage_line_(shortage) {}

  void clear() { length_ = 0; }
  std::string_view last() const { return {text_, length_}; }

  // Whether memory ran out since the last call.
  bool take_shortage() { return std::exchange(shortage_, false); }

 protected:
  int_type overflow(int_type c) override {
    if (ended_) length_ = 0;
    ended_ = c == '\n';
    if (ended_) {
      shortage_ = shortage_ || shortage_line_.empty() || last() == shortage_line_;
    } else if (length_ < sizeof text_) {
      text_[length_++] = traits_type::to_char_type(c);
    }
    return traits_type::not_eof(c);
  }

 private:
  std::string_view shortage_line_;
  char text_[200];
  std::size_t length_ = 0;
  bool ended_ = false;
  bool shortage_ = false;
};

// Never destroyed: the standard streams are flushed into them when the process ends.
LibraryLines& output_lines() {
  static LibraryLines* const lines = new LibraryLines("exception in parse attribute");
  return *lines;
}

LibraryLines& error_lines() {
  static LibraryLines* const lines = new LibraryLines("");
  return *lines;
}

}  // namespace

void require_memory() {
  const bool output = output_lines().take_shortage();
  const bool error = error_lines().take_shortage();
  if (output || error) throw std::bad_alloc();
}

Document try_to_parse(std::string html, bool drop_comments) {
  output_lines().clear();
  _qo_html* parsed = nullptr;
  parseHtml(parsed, std::move(html), std::string(), drop_comments, false);
  Document document(parsed);
  require_memory();
  return document;
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
  std::size_t low = tags - 1;
  std::size_t high = offsets.size() - 1;
  while (low < high) {
    const std::size_t missing = tags - tags_up_to(low);
    if (missing == 0) break;
    low += missing;
    const std::size_t middle = low + (high - low) / 2;
    if (tags_up_to(middle) < tags) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return offsets[low];
}

constexpr std::size_t excerpt_length = 30;

// The library's line on a name that it refuses; empty when content without an end is the reason, on
// which there is no line.
std::string reason_of_refusal() {
  const std::string_view last = output_lines().last();
  return std::string(last.find("invalid tag name") == 0 ? last : std::string_view());
}

[[noreturn]] void refuse(const Input& input) {
  const std::string reason = reason_of_refusal();
  const std::size_t tag = find_refused_tag(input.text);
  const std::string_view rest = std::string_view(input.text).substr(tag);
  const std::string_view first_line = rest.substr(0, rest.find('\n'));
  throw Failure(input.name + ":" + place_of(input.text, tag) + ": refused: " +
                (reason.empty() ? "no end to " + quoted(first_line, excerpt_length) : reason));
}

}  // namespace

void silence_library() {
  std::cout.rdbuf(&output_lines());
  std::cerr.rdbuf(&error_lines());
}

Document parse_page(const Input& input, bool drop_comments) {
  Document document = try_to_parse(input.text, drop_comments);
  if (document == nullptr) refuse(input);
  return document;
}

}  // namespace cli
