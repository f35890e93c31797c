// Writing nodes out as markup.

#ifndef QO_HTML_WRITER_H
#define QO_HTML_WRITER_H

#include <string>

#include <qo_html/qo_html.h>

namespace qo_html_inner {

// Appends a node with all that is below it.
void append_markup(std::string& out, _qo_html* start);

// Appends the attributes of a node, each with one space in front.
void append_attributes(std::string& out, const _qo_html& node);

}  // namespace qo_html_inner

#endif
