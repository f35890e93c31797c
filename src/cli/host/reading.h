// A reading of a page: which nodes somebody makes of its source, and where.

#ifndef QO_CLI_HOST_READING_H
#define QO_CLI_HOST_READING_H

#include <cstddef>
#include <string_view>
#include <vector>

#include <qo_html/qo_html.h>

#include <qo_page/page.h>

namespace cli {

enum class PlacedKind { document, element, text, comment, section, declaration, code };

// A node of a reading.
struct PlacedNode {
  PlacedKind kind;
  bool is_blank;           // a text of white space alone
  bool is_closed_at_once;  // by its one tag, which says so; its content is empty
  std::string_view name;   // of an element, declaration or code
  std::size_t parent;      // its place in the reading
  qo::Extent extent;
  std::size_t attributes_begin, attributes_end;  // their places
};

struct PlacedAttribute {
  std::string_view name;
  std::string_view value;  // as written; empty for one without
};

// Views are of the page or of the library's nodes.
struct Reading {
  // All nodes in document order, but for the texts in comments and sections. The first is the
  // document, and its own parent. What lies after the document's content is not read.
  std::vector<PlacedNode> nodes;

  std::vector<PlacedAttribute> attributes;
};

// The reading of the page's own tags.
Reading page_reading(const qo::Page& page);

struct HostReading {
  Reading places;
  std::vector<_qo_html*> nodes;  // in the same order
};

// `document` is what the library's parser made of `source`, comments included.
HostReading host_reading(_qo_html* document, std::string_view source);

}  // namespace cli

#endif
