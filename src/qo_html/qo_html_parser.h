// The parser's inner operations. Positions are byte indexes into `html`, which is only read.

#ifndef QO_HTML_PARSER_H
#define QO_HTML_PARSER_H

#include <cstddef>
#include <string>

#include <qo_html/qo_html.h>

// --- Tag names ---

// Reads the tag name after a "<". `position` is the first byte after the "<" and is left where
// scanning goes on: on the white space that ended the name (`has_attributes` is then set), or after
// its ">" or third "-" or "[". `sawSlash` tells of a "/" in front of the name or within it. Answers
// with the name, which is html.substr(nameStart, nameLength), or with the empty string and a line
// on standard output.
std::string getElementTagName(std::string& html, std::size_t& position, std::size_t& nameStart,
                              std::size_t& nameLength, bool& has_attributes, bool& sawSlash);

// Whether elements of that name, in any case, never have content. Sets `*kind` to 2 for "!doctype",
// to 3 for "?xml" and to 1 for every other name.
bool is_void_tag(const std::string& name, int* kind);

bool is_script_tag(const std::string& name);   // "script" or "SCRIPT"
bool is_style_tag(const std::string& name);    // "style" or "STYLE"
bool is_comment_tag(const std::string& name);  // "!--"
bool is_cdata_tag(const std::string& name);    // "![CDATA["

// --- Readers ---

// Reads the attributes of a start tag into `node`, up to and including its ">", and sets `closed`
// when a "/" is among them. What the end of the text cuts off is dropped.
void parse_attribute(_qo_html*& node, std::string& html, std::size_t& position);

// Each reads raw content into one text child, and moves `position` from the end of the opening tag
// to that of the end marker. Without an end marker: null or false, and `position` at the end of the
// text.
_qo_html* parse_comment_node(std::string& html, std::size_t& position);
bool parse_cdata_node(_qo_html*& node, std::string& html, std::size_t& position);
bool parse_script_node(_qo_html*& node, std::string& html, std::size_t& position);
bool parse_style_node(_qo_html*& node, std::string& html, std::size_t& position);

// --- The main loop ---

// Parses the whole of `html` into the open document `root`. `root` moves with the current node and
// is the document again when the result is true.
bool parse_html_content(_qo_html*& root, std::string& html, bool dropComments, bool reservedFlag);

#endif
