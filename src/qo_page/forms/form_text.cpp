#include <qo_page/forms/form_text.h>

#include <qo_page/base/ascii.h>
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

bool is_passed_over(const NodeRecord& record) {
  return record.tag == Tag::script_ || record.tag == Tag::template_ || record.tag == Tag::select_;
}

}  // namespace

DecodedText FormText::decoded(std::string_view written, WrittenText::Kind kind) const {
  const std::string lines = with_line_feeds(written);
  return DecodedText({lines, kind, 0, *tree_.dialect});
}

bool FormText::has_code(std::string_view value) const {
  return !decoded(value, WrittenText::Kind::value).code().empty();
}

std::string FormText::attribute(NodeIndex node, std::string_view name) const {
  const AttributeRecord* const found = tree_.find_attribute(node, name);
  return found == nullptr ? "" : value_of(tree_.written_value(*found));
}

std::string FormText::value_of(std::string_view written) const {
  return decoded(written, WrittenText::Kind::value).text();
}

std::string FormText::content_of(std::string_view written) const {
  written.remove_prefix(line_break_length(written));
  return with_line_feeds(decoded(written, WrittenText::Kind::text).text());
}

std::string FormText::label(NodeIndex option) const {
  CollapsedText label;
  for (NodeIndex node = option; node < tree_[option].subtree_end;) {
    const NodeRecord& record = tree_[node];
    if (is_text(record)) {
      const auto kind =
          is_literal(tree_, node) ? WrittenText::Kind::literal : WrittenText::Kind::text;
      label.add(decoded(written_text(tree_, node), kind));
    } else if (record.kind == NodeKind::code && role_of(tree_.html(node)) == CodeRole::output) {
      label.add_piece(tree_.html(node));
    }
    node = is_passed_over(record) ? record.subtree_end : node + 1;
  }
  return label.take();
}

}  // namespace qo
