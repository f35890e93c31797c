#include "tag_scanner.h"

#include <algorithm>

namespace cli {

namespace {

// The third of a leading "!" and all "-" and "[" ends a name, and belongs to it.
bool ends_by_mark(std::string_view name) {
  if (name.empty() || (name.back() != '-' && name.back() != '[')) return false;
  const auto marks =
      std::count_if(name.begin(), name.end(), [](char c) { return c == '-' || c == '['; });
  return marks + (name.front() == '!' ? 1 : 0) == 3;
}

TagExtent scan_attributes(std::string_view html, std::size_t i) {
  bool slash = false;
  bool in_value = false;
  bool value_began = false;
  bool value_is_empty = true;
  while (i < html.size()) {
    const char c = html[i];
    if (c == '>') return {i + 1, slash};
    if (c == '/') {
      slash = true;
      value_began = false;
      ++i;
    } else if (!in_value) {
      in_value = c == '=';
      value_began = false;
      value_is_empty = true;
      ++i;
    } else if (c == '"' || c == '\'') {
      const std::size_t close = html.find(c, i + 1);
      if (close == std::string_view::npos) break;
      value_began = true;
      value_is_empty = value_is_empty && close == i + 1;
      i = close + 1;
    } else if (c == ' ') {
      in_value = false;
      ++i;
    } else if (value_began || !value_is_empty) {
      in_value = false;  // this is the next name already
    } else {
      ++i;
    }
  }
  return {html.size(), false};
}

std::size_t skip(std::string_view html, std::size_t i, std::string_view characters) {
  return std::min(html.find_first_not_of(characters, i), html.size());
}

bool is_space_in_tag(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

}  // namespace

TagExtent scan_tag(std::string_view html, std::size_t begin, std::string_view name, bool is_void) {
  const std::size_t name_start = skip(html, begin + 1, " /");
  const std::size_t i = std::min(name_start + name.size(), html.size());
  const std::string_view read = html.substr(std::min(begin, html.size()), i - std::min(begin, i));
  const bool slash = read.find('/') != std::string_view::npos;
  if (ends_by_mark(name) || i == html.size()) return {i, slash};
  if (html[i] == '>') return {i + 1, slash};
  if (!is_space_in_tag(html[i])) return {std::min(i + 2, html.size()), true};  // "/>"
  if (slash && !is_void) return {i, true};
  return scan_attributes(html, i);
}

std::size_t skip_comment(std::string_view html, std::size_t begin) {
  if (begin >= html.size() || html[begin] != '<') return begin;
  const std::size_t name_start = skip(html, begin + 1, " ");
  if (html.substr(name_start, 3) != "!--") return begin;
  const std::size_t end = html.find("-->", name_start + 3);
  return end == std::string_view::npos ? html.size() : end + 3;
}

}  // namespace cli
