// The text of nodes.

#ifndef QO_PAGE_NODE_TEXT_H
#define QO_PAGE_NODE_TEXT_H

#include <string>

#include <qo_page/node.h>

namespace qo {

// Whether the node is no part of the text of the nodes around it.
bool is_hidden(const Node& node);

// Appends the characters of a text node.
void append_text(const Node& node, TextForm form, std::string& out);

// The text of the node and all that is below it, but for what is hidden there.
std::string text_of(const Node& node, TextForm form);

}  // namespace qo

#endif
