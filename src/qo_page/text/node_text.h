// The text of nodes.

#ifndef QO_PAGE_TEXT_NODE_TEXT_H
#define QO_PAGE_TEXT_NODE_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

#include <qo_page/tree/tree.h>

namespace qo {

// Whether the node is no part of the text of the nodes around it.
bool is_hidden(const NodeRecord& node);

// Whether it is a text, or a CDATA section, which is one to readers.
inline bool is_text(const NodeRecord& node) {
  return node.kind == NodeKind::text || node.kind == NodeKind::cdata;
}

// What a text or section holds, as it is written, and its decoded characters.
std::string_view written_text(const Tree& tree, NodeIndex text);
std::string characters_of(const Tree& tree, NodeIndex text);

// Whether a text or section is as it is written, without references.
bool is_literal(const Tree& tree, NodeIndex text);

// Whether a browser drops a line break at the start of the content.
bool drops_line_break(Tag name);
bool drops_line_break(const NodeRecord& node);

// The length of the line break that a text begins with, even if it is a reference; 0 when there is
// none.
std::size_t line_break_length(std::string_view text);

// The text of the node and all that is below it, but for what is hidden there.
std::string text_of(const Tree& tree, NodeIndex node, TextForm form);

// The value of an attribute.
std::string value_of(const Tree& tree, const AttributeRecord& attribute, TextForm form);

}  // namespace qo

#endif
