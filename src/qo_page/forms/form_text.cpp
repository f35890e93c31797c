#include <qo_page/forms/form_text.h>

#include <qo_html/qo_html_walk.h>

#include <qo_page/base/ascii.h>
#include <qo_page/selectors/attribute_match.h>
#include <qo_page/template/code_steps.h>
#include <qo_page/template/template_code.h>
#include <qo_page/text/node_text.h>

namespace qo {

namespace {

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

// Text with one space for each run of blanks outside of code, and none at the ends.
class CollapsedText {
 public:
  void add(const DecodedText& text) {
    const std::string_view characters = text.text();
    std::size_t i = 0;
    for (const Stretch& code : text.code()) {
      add_plain(characters.substr(i, code.begin - i));
      add_piece(characters.substr(code.begin, code.end - code.begin));
      i = code.end;
    }
    add_plain(characters.substr(i));
  }

  void add_piece(std::string_view piece) {
    if (is_after_blank_ && !out_.empty()) out_ += ' ';
    is_after_blank_ = false;
    out_ += piece;
  }

  std::string take() { return std::move(out_); }

 private:
  void add_plain(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (is_blank(text[i])) {
        is_after_blank_ = true;
      } else {
        add_piece(text.substr(i, 1));
      }
    }
  }

  std::string out_;
  bool is_after_blank_ = false;
};

bool is_passed_over(const Node& node) {
  return node.kind == NodeKind::comment || node.name == Tag::script_ ||
         node.name == Tag::template_ || node.name == Tag::select_;
}

}  // namespace

DecodedText FormSource::decoded(std::string_view written, WrittenText::Kind kind) const {
  const std::string lines = with_line_feeds(written);
  return DecodedText({lines, kind, 0, templates});
}

bool FormSource::has_code(std::string_view value) const {
  return !decoded(value, WrittenText::Kind::value).code().empty();
}

std::string FormSource::attribute(const Node& node, std::string_view name) const {
  const Attribute* const found = selectors::find_attribute(node, name);
  return found == nullptr ? "" : decoded(found->value, WrittenText::Kind::value).text();
}

std::string FormSource::content(const Node& textarea) const {
  if (textarea.children.empty()) return "";
  std::string_view written = textarea.children.front()->text;
  written.remove_prefix(line_break_length(written));
  return with_line_feeds(decoded(written, WrittenText::Kind::text).text());
}

std::string FormSource::label(const Node& option) const {
  CollapsedText label;
  TreeWalk walk(const_cast<Node*>(&option));
  while (const _qo_html* below = walk.next()) {
    const Node& node = *as_node(below);
    if (node.isText) {
      const auto kind = is_literal(node) ? WrittenText::Kind::literal : WrittenText::Kind::text;
      label.add(decoded(node.text, kind));
    } else if (node.kind == NodeKind::code) {
      const std::string_view code =
          text.substr(node.extent.begin, node.extent.end - node.extent.begin);
      if (role_of(code) == CodeRole::output) label.add_piece(code);
    } else if (is_passed_over(node)) {
      walk.skip_children();
    }
  }
  return label.take();
}

}  // namespace qo
