#include "tag_scanner.h"

#include <algorithm>
#include <utility>

namespace cli {

namespace {

// The third of a leading "!" and all "-" and "[" ends a name, and belongs to it.
bool ends_by_mark(std::string_view name) {
  if (name.empty() || (name.back() != '-' && name.back() != '[')) return false;
  const auto marks =
      std::count_if(name.begin(), name.end(), [](char c) { return c == '-' || c == '['; });
  return marks + (name.front() == '!' ? 1 : 0) == 3;
}

bool is_space_in_tag(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// The parser's state machine for attributes, without the attributes.
class AttributeScanner {
 public:
  AttributeScanner(std::string_view html, std::size_t start) : html_(html), i_(start) {}

  TagExtent scan() {
    while (i_ < html_.size() && html_[i_] != '>') {
      if (in_value_) {
        value_state(html_[i_]);
      } else {
        name_state(html_[i_++]);
      }
    }
    if (i_ >= html_.size()) return {html_.size(), false, {}};  // cut off: nothing counts
    end_value();
    return {i_ + 1, slash_, std::move(dropped_)};
  }

 private:
  void name_state(char c) {
    if (c == '/') {
      slash_ = true;
    } else if (c == '=') {
      in_value_ = true;
    } else if (c == ' ' || c == '\t') {
      name_.clear();
    } else if (!is_space_in_tag(c)) {
      name_ += c;
    }
  }

  void value_state(char c) {
    if (c == '"' || c == '\'') {
      quoted_value(c);
    } else if (c == '/') {
      slash_ = true;
      drops_ = drops_ || !after_quotes_;
      after_quotes_ = false;
      ++i_;
    } else if (c == ' ') {
      end_value();
      ++i_;
    } else if (after_quotes_ || !is_empty_) {
      end_value();  // this is the next name already
    } else {
      drops_ = drops_ || !is_space_in_tag(c);
      ++i_;
    }
  }

  void quoted_value(char quote) {
    const std::size_t close = std::min(html_.find(quote, i_ + 1), html_.size());
    after_quotes_ = true;
    is_empty_ = is_empty_ && close == i_ + 1;
    i_ = close + 1;
  }

  void end_value() {
    if (in_value_ && drops_) dropped_.push_back(name_);
    name_.clear();
    in_value_ = false;
    after_quotes_ = false;
    is_empty_ = true;
    drops_ = false;
  }

  std::string_view html_;
  std::size_t i_;
  std::string name_;
  bool in_value_ = false;
  bool after_quotes_ = false;
  bool is_empty_ = true;  // the value
  bool drops_ = false;    // characters of it
  bool slash_ = false;
  std::vector<std::string> dropped_;
};

std::size_t skip(std::string_view html, std::size_t i, std::string_view characters) {
  return std::min(html.find_first_not_of(characters, i), html.size());
}

}  // namespace

TagExtent scan_tag(std::string_view html, std::size_t begin, std::string_view name, bool is_void) {
  const std::size_t name_start = skip(html, begin + 1, " /");
  const std::size_t i = std::min(name_start + name.size(), html.size());
  const std::string_view read = html.substr(std::min(begin, html.size()), i - std::min(begin, i));
  const bool slash = read.find('/') != std::string_view::npos;
  if (ends_by_mark(name) || i == html.size()) return {i, slash, {}};
  if (html[i] == '>') return {i + 1, slash, {}};
  if (!is_space_in_tag(html[i])) return {std::min(i + 2, html.size()), true, {}};  // "/>"
  if (slash && !is_void) return {i, true, {}};
  return AttributeScanner(html, i).scan();
}

std::size_t skip_comment(std::string_view html, std::size_t begin) {
  if (begin >= html.size() || html[begin] != '<') return begin;
  const std::size_t name_start = skip(html, begin + 1, " ");
  if (html.substr(name_start, 3) != "!--") return begin;
  const std::size_t end = html.find("-->", name_start + 3);
  return end == std::string_view::npos ? html.size() : end + 3;
}

}  // namespace cli
