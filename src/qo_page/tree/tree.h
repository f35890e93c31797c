// A page as it is kept: its source, and an index of it.
//
// The index is an array of records in document order, and one of attributes. Records tell where in
// the source something is; names, values and texts are read from there. The first child of a node
// is the next record, its next sibling is the one after its subtree.

#ifndef QO_PAGE_TREE_TREE_H
#define QO_PAGE_TREE_TREE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <qo_page/base/array.h>
#include <qo_page/base/ascii.h>
#include <qo_page/base/tags.h>
#include <qo_page/page.h>
#include <qo_page/template/dialect.h>

namespace qo {

// The vocabulary that an element belongs to.
enum class Namespace : unsigned char { html, svg, math, xml };

using NodeIndex = std::uint32_t;

constexpr NodeIndex document_index = 0;
constexpr NodeIndex no_node = static_cast<NodeIndex>(-1);

struct NodeRecord {
  std::uint32_t begin, content_begin, content_end, end;  // as in Extent
  NodeIndex parent;                                      // of the document: none
  NodeIndex subtree_end;                                 // after the last node below it
  std::uint32_t first_attribute;   // its own are those up to the first one of the next node
  std::uint16_t name_length : 15;  // `long_name`: that, or more
  std::uint16_t is_raw_block : 1;  // what is in it is no markup, whatever its name
  Tag tag;                         // of an element, whatever its case
  NodeKind kind : 3;
  Namespace space : 2;
  unsigned char has_content : 1;      // of an element: not void, not closed by its own start tag
  unsigned char is_self_closing : 1;  // of an element: its start tag ends in "/>"
  unsigned char is_cut_off : 1;       // the source ends before what ends it

  static constexpr std::uint16_t long_name = 0x7FFF;
};

static_assert(sizeof(NodeRecord) == 32);

struct AttributeRecord {
  std::uint32_t name_begin;
  std::uint32_t name_end;
  std::uint32_t value_end;  // that of the name where there is no "="
  std::uint8_t value_gap;   // from the name to the value; 0: there is no "="; `long_gap`: or more
  std::uint8_t name_hash;

  static constexpr std::uint8_t long_gap = 0xFF;
};

static_assert(sizeof(AttributeRecord) == 16);

// Where in the source controls belong to a form, wherever in the tree they are: from its start tag
// on, to the next </form>.
struct FormRange {
  std::size_t begin;
  std::size_t end;
};

// The same for names that differ in case alone.
inline std::uint8_t name_hash(std::string_view name) {
  if (name.empty()) return 0;
  const auto part = [](char c) { return static_cast<unsigned>(lower(c)); };
  return static_cast<std::uint8_t>(name.size() * 31 + part(name.front()) * 7 + part(name.back()));
}

// That of "!DOCTYPE", "?php" or "%", which what is between "<" and ">" begins with.
std::size_t declaration_name_length(std::string_view inner);

struct Tree {
  std::string source;
  PageOptions options;
  const Dialect* dialect = nullptr;  // that of the options
  Array<NodeRecord> nodes;           // the document first; last one that only ends the attributes
  Array<AttributeRecord> attributes;

  // Those of all forms but for the ones in a template, and in other forms, which a browser drops.
  std::vector<FormRange> form_ranges;

  // Some tag may end elsewhere, or end its element, for its author.
  bool has_odd_tags = false;

  const NodeRecord& operator[](NodeIndex node) const { return nodes[node]; }

  // The number of nodes, and the index after the last one.
  NodeIndex size() const { return static_cast<NodeIndex>(nodes.size() - 1); }

  bool is_element(NodeIndex node) const { return nodes[node].kind == NodeKind::element; }

  // Whether it is an element of HTML, of that name.
  bool is_html(NodeIndex node, Tag tag) const {
    const NodeRecord& record = nodes[node];
    return record.tag == tag && record.space == Namespace::html;
  }

  // Each of them none where there is no such node.
  NodeIndex parent(NodeIndex node) const { return nodes[node].parent; }
  NodeIndex first_child(NodeIndex node) const {
    return nodes[node].subtree_end > node + 1 ? node + 1 : no_node;
  }
  NodeIndex next_sibling(NodeIndex node) const {
    const NodeIndex next = nodes[node].subtree_end;
    const NodeIndex above = nodes[node].parent;
    return above != no_node && next < nodes[above].subtree_end ? next : no_node;
  }
  NodeIndex previous_sibling(NodeIndex node) const;

  // As written. `name` takes the name's own time where it is as long as a name can be.
  Range name_range(NodeIndex node) const;
  std::string_view name(NodeIndex node) const { return name_range(node).in(source); }

  Extent extent(NodeIndex node) const {
    const NodeRecord& record = nodes[node];
    return {record.begin, record.content_begin, record.content_end, record.end};
  }
  std::string_view html(NodeIndex node) const { return slice(nodes[node].begin, nodes[node].end); }
  std::string_view inner_html(NodeIndex node) const {
    return slice(nodes[node].content_begin, nodes[node].content_end);
  }
  std::string_view slice(std::size_t begin, std::size_t end) const {
    return std::string_view(source).substr(begin, end - begin);
  }

  // --- Attributes ---

  const AttributeRecord* attributes_begin(NodeIndex node) const {
    return attributes.begin() + nodes[node].first_attribute;
  }
  const AttributeRecord* attributes_end(NodeIndex node) const { return attributes_begin(node + 1); }

  // The first of that name in any case, or null.
  const AttributeRecord* find_attribute(NodeIndex node, std::string_view name) const;

  std::string_view name(const AttributeRecord& attribute) const {
    return slice(attribute.name_begin, attribute.name_end);
  }
  std::size_t value_begin(const AttributeRecord& attribute) const;
  std::string_view written_value(const AttributeRecord& attribute) const {
    return slice(value_begin(attribute), attribute.value_end);
  }
  char quote(const AttributeRecord& attribute) const;
};

}  // namespace qo

#endif
