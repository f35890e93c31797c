// A page or template as its author wrote it: its bytes, and the tree of its own tags.
//
// Any text is read, and every byte of it belongs to exactly one token: a tag, a run of text, a
// comment, a doctype, or a piece of template code. Where tags, attributes and comments begin and
// end is as the HTML standard's tokenizer says, but that template code is opaque: <?...?>, <%...%>,
// {{...}}, {{{...}}}, {%...%} and {#...#} may be in text, in tags and in values, hold any
// character, and end neither a tag nor a value.
//
// The tree has one element for each start tag, in the order of the source, nested as a browser
// would nest it. End tags that authors may leave out are understood; nothing is invented, moved or
// dropped. It is for reading; a page is changed by Edits (<qo_page/edits.h>).
//
// Ownership: a page owns its source and its nodes, which live as long as it does. Offsets are in
// bytes, from 0, into `source()`.
//
// Memory: the source, and some 32 bytes for each node and 16 for each attribute.
//
// Errors: std::bad_alloc, with nothing half-done, and what a function says. A page that was moved
// from has no nodes: asking it throws Error. So does a null node, or a node of another page.
//
// Threads: nothing is shared between pages. One page may be read by several threads at once.

#ifndef QO_PAGE_PAGE_H
#define QO_PAGE_PAGE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <qo_page/error.h>
#include <qo_page/line_index.h>
#include <qo_page/node.h>
#include <qo_page/qo_page_export.h>

namespace qo {

class Selector;  // <qo_page/selector.h>

// How a page is read.
struct PageOptions {
  // The language that it is written in; docs/dialects.md tells of each. "html" is read as a browser
  // does, with template code of many kinds opaque; "plain" the same without template code.
  std::string dialect = "html";
};

// The dialect of a file, by its name and, where that leaves it open, by its first bytes. Gives a
// name for PageOptions, "html" when nothing tells.
QO_PAGE_API std::string_view dialect_of(std::string_view path, std::string_view source);

// What is told of a dialect.
struct DialectInfo {
  std::string_view name;     // for PageOptions
  std::string_view endings;  // of its files, without the first dot, separated by blanks
  bool has_case;             // names of elements count as they are written
};

// All of them.
QO_PAGE_API std::vector<DialectInfo> dialects();

// A page, read once. It does not change.
class QO_PAGE_API Page {
 public:
  // Reads `source`, in time that grows with its length, whatever it holds. Throws Error when the
  // text is UTF-16, ISO-2022, HZ or UTF-7, or has 4 GiB or more, and when there is no such
  // dialect; no other text is refused.
  explicit Page(std::string source, PageOptions options = PageOptions());
  ~Page();
  Page(Page&&) noexcept;
  Page& operator=(Page&&) noexcept;

  // What it was made of.
  const std::string& source() const&;
  const PageOptions& options() const&;
  const std::string& source() const&& = delete;
  const PageOptions& options() const&& = delete;

  // The root of the tree, with everything else below it.
  Node document() const&;
  Node document() const&& = delete;

  // What a selector finds, in document order, at most the first `most`. A text is first read as a
  // selector, which may throw SelectorError.
  std::vector<Node> select(const Selector& selector, std::size_t most = SIZE_MAX) const&;
  std::vector<Node> select(std::string_view selector, std::size_t most = SIZE_MAX) const&;
  std::vector<Node> select(const Selector& selector, std::size_t most = SIZE_MAX) const&& = delete;
  std::vector<Node> select(std::string_view selector, std::size_t most = SIZE_MAX) const&& = delete;

  // The first of these; a null node when there is none.
  Node first(const Selector& selector) const&;
  Node first(std::string_view selector) const&;
  Node first(const Selector& selector) const&& = delete;
  Node first(std::string_view selector) const&& = delete;

  // The node itself or the innermost one around it that matches; a null node when none does. It is
  // meant for a few nodes: it looks at the page up to the node, and with `:has` and texts at the
  // whole page.
  Node closest(Node node, const Selector& selector) const&;
  Node closest(Node node, std::string_view selector) const&;
  Node closest(Node node, const Selector& selector) const&& = delete;
  Node closest(Node node, std::string_view selector) const&& = delete;

  // The node of that number (see Node::index). Throws Error when there is none.
  Node node_at(std::size_t index) const&;
  Node node_at(std::size_t index) const&& = delete;

  // How many nodes there are, the document included.
  std::size_t node_count() const;

  // The line and column of an offset, which may be the end of the source. Throws Error beyond that.
  // Takes time for what is in front of it; for many offsets, a LineIndex of the source is cheaper.
  Position position_of(std::size_t offset) const;

 private:
  friend struct PageAccess;
  explicit Page(std::unique_ptr<Tree> tree);

  std::unique_ptr<Tree> tree_;
};

}  // namespace qo

#endif
