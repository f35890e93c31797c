// The readings of a page: which nodes each makes of its source, and where.

#ifndef QO_CLI_HOST_READING_H
#define QO_CLI_HOST_READING_H

#include <cstddef>
#include <string_view>
#include <vector>

#include <qo_html/qo_html.h>

#include <qo_page/page.h>

namespace cli {

// A node of a reading.
struct PlacedNode {
  _qo_html* node;
  std::size_t parent;  // its place in the reading
  qo::Extent extent;
  bool is_closed_at_once;  // by its one tag, which says so; its content is empty
};

// All nodes in document order. The first is the document, and its own parent. What lies after the
// document's content is not read.
using Reading = std::vector<PlacedNode>;

Reading page_reading(const qo::Page& page);

// `document` is what the library's parser made of `source`, comments included.
Reading host_reading(_qo_html* document, std::string_view source);

}  // namespace cli

#endif
