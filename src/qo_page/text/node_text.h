// The text of nodes.

#ifndef QO_PAGE_TEXT_NODE_TEXT_H
#define QO_PAGE_TEXT_NODE_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

#include <qo_page/tree/node.h>

namespace qo {

// Whether the node is no part of the text of the nodes around it.
bool is_hidden(const Node& node);

// The decoded characters of a text node.
std::string characters_of(const Node& node);

// Whether a text node is as it is written, without references.
bool is_literal(const Node& text);

// Whether a browser drops a line break at the start of the content.
bool drops_line_break(Tag name);
bool drops_line_break(const Node& node);

// That of the line break that a text begins with, be it written as a reference; 0 for none.
std::size_t line_break_length(std::string_view text);

// The text of the node and all that is below it, but for what is hidden there.
std::string text_of(const Node& node, TextForm form);

// The value of an attribute.
std::string value_of(const Attribute& attribute, TextForm form);

}  // namespace qo

#endif
