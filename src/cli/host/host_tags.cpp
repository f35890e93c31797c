#include "host/host_tags.h"

#include <algorithm>

namespace cli {

namespace {

constexpr std::string_view spaces_in_tags = " \t\r\n";

bool is_space_in_tag(char c) {
  return spaces_in_tags.find(c) != std::string_view::npos;
}

// A leading "!", each "-" and each "[" is a mark. The third mark ends a name, and belongs to it.
bool ends_by_mark(std::string_view name) {
  if (name.empty() || (name.back() != '-' && name.back() != '[')) return false;
  const auto marks =
      std::count_if(name.begin(), name.end(), [](char c) { return c == '-' || c == '['; });
  return marks + (name.front() == '!' ? 1 : 0) == 3;
}

// The parser's state machine for attributes, without the attributes.
class AttributeScanner {
 public:
  AttributeScanner(std::string_view html, std::size_t start) : html_(html), i_(start) {}

  HostTag scan() {
    while (i_ < html_.size() && html_[i_] != '>') {
      if (in_value_) {
        value_state(html_[i_]);
      } else {
        name_state(html_[i_++]);
      }
    }
    if (i_ >= html_.size()) return {html_.size(), false};  // cut off: nothing counts
    return {i_ + 1, slash_};
  }

 private:
  void name_state(char c) {
    if (c == '/') slash_ = true;
    if (c == '=') in_value_ = true;
  }

  void value_state(char c) {
    if (c == '"' || c == '\'') {
      quoted_value(c);
    } else if (c == '/') {
      slash_ = true;
      after_quotes_ = false;
      ++i_;
    } else if (c == ' ') {
      end_value();
      ++i_;
    } else if (after_quotes_ || has_value_) {
      end_value();  // this is the next name already
    } else {
      ++i_;
    }
  }

  void quoted_value(char quote) {
    const std::size_t close = std::min(html_.find(quote, i_ + 1), html_.size());
    after_quotes_ = true;
    has_value_ = has_value_ || close != i_ + 1;
    i_ = close + 1;
  }

  void end_value() {
    in_value_ = false;
    after_quotes_ = false;
    has_value_ = false;
  }

  std::string_view html_;
  std::size_t i_;
  bool in_value_ = false;
  bool after_quotes_ = false;
  bool has_value_ = false;  // that is not empty
  bool slash_ = false;
};

bool has_slash(std::string_view tag) {
  return tag.find('/') != std::string_view::npos;
}

std::size_t skip(std::string_view html, std::size_t i, std::string_view characters) {
  return std::min(html.find_first_not_of(characters, i), html.size());
}

}  // namespace

std::string_view host_tag_name(std::string_view html, std::size_t begin) {
  const std::string_view rest = html.substr(skip(html, begin + 1, " "));
  int marks = rest.substr(0, 1) == "!" ? 1 : 0;
  std::size_t i = 0;
  for (; i < rest.size() && rest[i] != '>' && !is_space_in_tag(rest[i]); ++i) {
    if ((rest[i] == '-' || rest[i] == '[') && ++marks == 3) return rest.substr(0, i + 1);
  }
  return rest.substr(0, i);
}

HostTag scan_host_tag(std::string_view html, std::size_t begin, std::string_view name,
                      bool is_void) {
  const std::size_t name_start = skip(html, begin + 1, " /");
  const std::size_t i = std::min(name_start + name.size(), html.size());
  const bool slash = has_slash(html.substr(begin, i - begin));
  if (ends_by_mark(name) || i == html.size()) return {i, slash};
  if (html[i] == '>') return {i + 1, slash};
  if (!is_space_in_tag(html[i])) {
    if (name.empty()) return {html.size(), has_slash(html.substr(begin))};  // a name cut off
    return {i + 2, true};                                                   // "/>"
  }
  if (slash && !is_void) return {i, true};
  return AttributeScanner(html, i).scan();
}

}  // namespace cli
