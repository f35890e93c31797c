// A page or template as its author wrote it: its bytes, and the tree of its own tags.
//
// Any text is read, and every byte of it belongs to exactly one token: a tag, a run of text, a
// comment, a doctype, or a piece of template code. Where tags, attributes and comments begin and
// end is as the HTML standard's tokenizer says, but that template code is opaque: <?...?>, <%...%>,
// {{...}}, {{{...}}}, {%...%} and {#...#} may be in text, in tags and in values, hold any
// character, and end neither a tag nor a value.
//
// The tree has one element for each start tag of the source, in the order of the source, nested as
// a browser would nest it: end tags that authors may leave out are understood, nothing is invented,
// moved or dropped. Nodes are those of qo_html, so that what walks and reads these works on them.
// The tree is for reading; a page is changed by Edits (<qo_page/edits.h>).
//
// Names, values and texts in the nodes are as written. `text()` and `attribute()` decode them as a
// browser does.
//
// Ownership: a page owns its source and its nodes, which live as long as it does. Offsets are in
// bytes, from 0, into `source()`.
//
// Errors: std::bad_alloc, with nothing half-done, and what a function says.
//
// Threads: nothing is shared between pages. One page may be read by several threads at once.

#ifndef QO_PAGE_PAGE_H
#define QO_PAGE_PAGE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <qo_html/qo_html.h>

#include <qo_page/qo_page_export.h>

namespace qo {

class Selector;  // <qo_page/selector.h>

// What ends an operation.
class QO_PAGE_API Error : public std::runtime_error {
 public:
  // `message` is one line for people; `offset` tells where in the text it is about the trouble is.
  Error(const std::string& message, std::size_t offset)
      : std::runtime_error(message), offset_(offset) {}

  // Where the trouble is.
  std::size_t offset() const { return offset_; }

 private:
  std::size_t offset_;
};

// Where a node lies in the source. An element without an end tag of its own ends where its content
// does. Void elements, texts, doctypes and template code have an empty content at their end.
struct Extent {
  std::size_t begin;          // of the start tag
  std::size_t content_begin;  // after the start tag
  std::size_t content_end;    // in front of the end tag
  std::size_t end;            // after the end tag
};

// What a node is. `code` is <?...?> and <%...%> where they are tags of their own.
enum class NodeKind : unsigned char { document, element, text, comment, doctype, cdata, code };

// How a text or value is given: with its references decoded, as it is in the source, or as a person
// reads it: decoded, with one blank for all white space, also between blocks and cells, and none at
// the ends.
enum class TextForm { decoded, written, readable };

// How a page is read.
struct PageOptions {
  bool templates = true;  // template code is opaque; otherwise it is read like any other text
};

// A page, read once. It does not change.
class QO_PAGE_API Page {
 public:
  // Reads `source`, in time that grows with its length, whatever it holds. Throws Error when the
  // text is UTF-16, ISO-2022, HZ or UTF-7, which no other function takes.
  explicit Page(std::string source, PageOptions options = PageOptions());
  ~Page();
  Page(Page&&) noexcept;
  Page& operator=(Page&&) noexcept;

  // What it was made of.
  const std::string& source() const;
  const PageOptions& options() const;

  // The root of the tree: `isRoot`, with everything else below it. Elements have their names in
  // `tag`, their attributes in `attributes` (of several of one name the first; code between
  // attributes is none) and the tokens of "class" in `classes`. Comments (`isComment`) and CDATA
  // sections (`isCdata`) have their content in a text child. Doctypes, and <?...?> and <%...%> in
  // text, are declarations (`isDeclaration`).
  _qo_html* document() const;

  // What a selector finds, in document order; not more than the first `most`.
  std::vector<_qo_html*> select(const Selector& selector, std::size_t most = SIZE_MAX) const;

  // --- Of a node of this page ---

  // What it is, and where.
  NodeKind kind(const _qo_html* node) const;
  Extent extent(const _qo_html* node) const;

  // The node's own bytes, and those of its content alone. They live as long as the page.
  std::string_view html(const _qo_html* node) const;
  std::string_view inner_html(const _qo_html* node) const;

  // The text of the node and of all that is below it, but for comments, template code in tags of
  // its own, scripts and styles; these have their own text when they are the node itself.
  std::string text(const _qo_html* node, TextForm form = TextForm::decoded) const;

  // The value of an attribute; names compare without case. Empty for one without a value, nothing
  // when there is none of that name.
  std::optional<std::string> attribute(const _qo_html* node, std::string_view name,
                                       TextForm form = TextForm::decoded) const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace qo

#endif
