#include <qo_page/form_text.h>

#include <algorithm>

#include <qo_html/qo_html_walk.h>

#include <qo_page/ascii.h>
#include <qo_page/node_text.h>
#include <qo_page/selectors/attribute_match.h>
#include <qo_page/template_code.h>

namespace qo {

namespace {

// Calls `on_code` with each piece of template code and `on_plain` with what is between.
template <class OnCode, class OnPlain>
void visit(std::string_view text, bool templates, OnCode on_code, OnPlain on_plain) {
  CodeScanner code(text, templates);
  std::size_t plain = 0;
  for (std::size_t i = 0; templates && i < text.size();) {
    i = std::min(text.find_first_of("{<", i), text.size());
    const std::size_t end = i < text.size() ? code.end_of(i, CodeScanner::Place::tag) : 0;
    if (end != 0) {
      on_plain(text.substr(plain, i - plain));
      on_code(text.substr(i, end - i));
      plain = i = end;
    } else {
      ++i;
    }
  }
  on_plain(text.substr(plain));
}

// Line feeds for CR LF and CR.
std::string with_line_feeds(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r') {
      out += text[i];
    } else if (text.substr(i + 1, 1) != "\n") {
      out += '\n';
    }
  }
  return out;
}

// One space for each run of blanks outside of code; none at the ends.
std::string collapsed(std::string_view text, bool templates) {
  std::string out;
  bool is_after_blank = false;
  const auto add = [&out, &is_after_blank](std::string_view piece) {
    if (is_after_blank && !out.empty()) out += ' ';
    is_after_blank = false;
    out += piece;
  };
  visit(text, templates, add, [&](std::string_view plain) {
    for (std::size_t i = 0; i < plain.size(); ++i) {
      if (is_blank(plain[i])) {
        is_after_blank = true;
      } else {
        add(plain.substr(i, 1));
      }
    }
  });
  return out;
}

}  // namespace

bool FormSource::has_code(std::string_view written) const {
  bool found = false;
  visit(
      written, templates, [&found](std::string_view) { found = true; }, [](std::string_view) {});
  return found;
}

std::string FormSource::decoded(std::string_view written, DecodeMode mode) const {
  std::string out;
  visit(
      written, templates, [&out](std::string_view code) { out += code; },
      [&out, mode](std::string_view plain) { out += decode(with_line_feeds(plain), mode); });
  return out;
}

std::string FormSource::attribute(const Node& node, std::string_view name) const {
  const Attribute* found = selectors::find_attribute(node, name);
  return found == nullptr ? "" : decoded(found->value, DecodeMode::attribute);
}

std::string FormSource::content(const Node& textarea) const {
  if (textarea.children.empty()) return "";
  std::string_view written = textarea.children.front()->text;
  written.remove_prefix(line_break_length(written));
  return with_line_feeds(decoded(written, DecodeMode::text));
}

std::string FormSource::label(const Node& option) const {
  std::string out;
  TreeWalk walk(const_cast<Node*>(&option));
  while (const _qo_html* below = walk.next()) {
    const Node& node = *as_node(below);
    const std::string_view whole =
        text.substr(node.extent.begin, node.extent.end - node.extent.begin);
    if (node.isText) {
      out += is_literal(node) ? node.text : decoded(node.text, DecodeMode::text);
    } else if (node.kind == NodeKind::code && role_of(whole) == CodeRole::output) {
      out += whole;
    } else if (node.kind == NodeKind::comment || node.name == Tag::script_ ||
               node.name == Tag::template_) {
      walk.skip_children();
    }
  }
  return collapsed(out, templates);
}

}  // namespace qo
