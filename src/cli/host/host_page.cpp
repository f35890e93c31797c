#include "host/host_page.h"

#include <algorithm>
#include <iostream>
#include <new>
#include <streambuf>
#include <string_view>
#include <utility>
#include <vector>

#include "host/host.h"
#include "host/host_tags.h"
#include "io/failure.h"
#include "io/text.h"

namespace cli {

namespace {

// What a thread has written to a standard stream.
struct LineState {
  char text[200];
  std::size_t length = 0;
  bool ended = false;
  bool told_shortage = false;
};

thread_local LineState line_states[2];

// Takes what the library writes to a standard stream, and keeps for each thread whether a line told
// of memory that ran out. Allocates nothing.
class LibraryLines : public std::streambuf {
 public:
  // `stream`: which of the streams. `shortage`: the line that tells; empty: any does.
  LibraryLines(std::size_t stream, std::string_view shortage)
      : stream_(stream), shortage_line_(shortage) {}

  // Whether memory ran out since the last call.
  bool take_shortage() const { return std::exchange(line_states[stream_].told_shortage, false); }

 protected:
  int_type overflow(int_type c) override {
    LineState& state = line_states[stream_];
    if (state.ended) state.length = 0;
    state.ended = c == '\n';
    if (state.ended) {
      const std::string_view line(state.text, state.length);
      state.told_shortage = state.told_shortage || shortage_line_.empty() || line == shortage_line_;
    } else if (state.length < sizeof state.text) {
      state.text[state.length++] = traits_type::to_char_type(c);
    }
    return traits_type::not_eof(c);
  }

 private:
  std::size_t stream_;
  std::string_view shortage_line_;
};

// Never destroyed: the standard streams are flushed into them when the process ends.
LibraryLines& output_lines() {
  static LibraryLines* const lines = new LibraryLines(0, "exception in parse attribute");
  return *lines;
}

LibraryLines& error_lines() {
  static LibraryLines* const lines = new LibraryLines(1, "");
  return *lines;
}

}  // namespace

void require_memory() {
  const bool output = output_lines().take_shortage();
  const bool error = error_lines().take_shortage();
  if (output || error) throw std::bad_alloc();
}

Document try_to_parse(std::string html, bool drop_comments) {
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

// Where the tag is at which the parser gave up. It is the last one that the parser met, so that the
// shortest beginning of the page with as many tags ends with its "<". Each "<" is at most one tag:
// going on by as many "<" as tags are missing never goes too far, and mostly gets there at once.
// Otherwise the search halves what is left.
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

// The names of content that is not markup, and what has to end it.
struct RawContent {
  std::string_view name;
  const char* missing_end;
};

constexpr char script_end[] = "no </script> outside quotes ends this script";
constexpr char style_end[] = "no </style> ends this style";

constexpr RawContent raw_contents[] = {{"!--", "no \"-->\" ends this comment"},
                                       {"![CDATA[", "no \"]]>\" ends this CDATA section"},
                                       {"script", script_end},
                                       {"SCRIPT", script_end},
                                       {"style", style_end},
                                       {"STYLE", style_end}};

bool may_be_in_name(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == ':' ||
         c == '_';
}

constexpr std::size_t excerpt_length = 30;

std::string reason_of_refusal(std::string_view name) {
  for (const RawContent& raw : raw_contents) {
    if (name == raw.name) return raw.missing_end;
  }
  const auto refused = std::find_if_not(name.begin(), name.end(), may_be_in_name);
  const auto at = static_cast<std::size_t>(refused - name.begin());
  return quoted(first_character(name.substr(at)), excerpt_length) +
         " cannot be in a name: " + quoted(name, excerpt_length);
}

}  // namespace

void silence_library() {
  std::cout.rdbuf(&output_lines());
  std::cerr.rdbuf(&error_lines());
}

Refusal find_refusal(const std::string& html) {
  const std::size_t tag = find_refused_tag(html);
  return {tag, "refused: " + reason_of_refusal(host_tag_name(html, tag))};
}

std::string decode_as_host(std::string text) {
  qo_decode_html_entities(text);
  require_memory();
  return text;
}

Document parse_page(const Input& input, bool drop_comments) {
  Document document = try_to_parse(input.text, drop_comments);
  if (document != nullptr) return document;
  const Refusal refusal = find_refusal(input.text);
  throw Failure(input.name + ":" + place_of(input.text, refusal.offset) + ": " + refusal.reason);
}

}  // namespace cli
