#include <qo_page/selector.h>

#include <qo_page/selectors/program.h>
#include <qo_page/selectors/run.h>
#include <qo_page/tree/node_access.h>

namespace qo {

namespace {

bool is_line_break(char c) {
  return c == '\n' || c == '\r' || c == '\f';
}

bool is_continuation(char c) {
  return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

// A caret under the place in its line.
std::string show(const std::string& text, std::size_t offset) {
  std::size_t begin = offset, end = offset;
  while (begin > 0 && !is_line_break(text[begin - 1])) --begin;
  while (end < text.size() && !is_line_break(text[end])) ++end;
  std::string below;
  for (std::size_t i = begin; i < offset; ++i) {
    if (!is_continuation(text[i])) below += text[i] == '\t' ? '\t' : ' ';
  }
  return text.substr(begin, end - begin) + "\n" + below + "^";
}

}  // namespace

SelectorError::SelectorError(const std::string& message, std::size_t offset,
                             const std::string& selector)
    : Error(message, offset, Place::selector),
      shown_(std::make_shared<const std::string>(show(selector, offset))) {}

Selector::Selector(std::string_view text)
    : program_(std::make_shared<const selectors::Program>(selectors::compile(std::string(text)))) {}

const std::string& Selector::text() const {
  return program_->text;
}

std::vector<Node> Selector::select(Node root, std::size_t most) const {
  const Tree& tree = NodeAccess::tree(root);
  return NodeAccess::nodes(
      tree, selectors::select(*program_, tree, NodeAccess::index_in(tree, root), most));
}

bool Selector::matches(Node node) const {
  const Tree& tree = NodeAccess::tree(node);
  return selectors::matches(*program_, tree, NodeAccess::index_in(tree, node));
}

}  // namespace qo
