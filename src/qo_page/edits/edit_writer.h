// The new source of an edited page, and where everything must be in it.

#ifndef QO_PAGE_EDITS_EDIT_WRITER_H
#define QO_PAGE_EDITS_EDIT_WRITER_H

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <qo_page/base/pattern.h>
#include <qo_page/edits.h>
#include <qo_page/edits/edit_guard.h>
#include <qo_page/edits/node_edits.h>
#include <qo_page/edits/seam_check.h>
#include <qo_page/edits/substituter.h>
#include <qo_page/template/template_code.h>
#include <qo_page/tree/tree_walk.h>

namespace qo {

// A stretch of the new source that was not in the old one. Nodes that begin in it end in it, or,
// when it is the first half of what is wrapped around a node, in the second half.
struct Insertion {
  std::size_t begin, end;    // in the new source
  std::size_t old_begin;     // where it went in
  bool is_text;              // no nodes but texts and code
  std::size_t second_begin;  // the second half; where there is none, as `end`
  std::size_t second_end;
  std::size_t wrappers;  // nodes that begin in the first half and must end in the second
};

// A node of the old page that is still there, and whose place the changes alone do not tell.
struct KeptNode {
  enum class Known { all, end };  // that of the content is the end, too

  NodeIndex node;
  Known known;
  Extent extent;  // in the new source, as far as it is known
  bool is_renamed;
};

// Nodes of the old page that are gone: one whose tags were taken away, or one with all below it.
struct GoneNodes {
  NodeIndex begin, end;
};

struct WrittenEdit {
  std::string source;
  std::vector<Change> changes;
  std::vector<Insertion> insertions;  // in order
  std::vector<KeptNode> kept;         // in document order
  std::vector<GoneNodes> gone;        // likewise
  std::vector<Seam> seams;            // in order
};

// Markup in two halves: up to where the content of its innermost first element ends, and from there
// on. Throws Error when there is none.
struct Halves {
  std::string first, second;
  std::size_t levels;  // elements that both have a part of
};
Halves split_wrapper(const std::string& markup, const PageOptions& options);

// Walks the old page and writes the new one.
class EditWriter {
 public:
  // `edits` are in document order, at most one a node. The tree and they must outlive the object.
  EditWriter(const Tree& tree, const std::vector<NodeEdits>& edits);

  WrittenEdit write();

  // The edits that are being written, or were written last; null at first.
  const NodeEdits* current() const { return current_; }

 private:
  static constexpr std::size_t no_insertion = static_cast<std::size_t>(-1);

  // What is left to write at the end of an element or section with edits.
  struct OpenNode {
    NodeIndex node;
    const NodeEdits* edits;
    std::size_t begin, content_begin;  // in the new source
    std::size_t
        first_half;  // its place in `insertions`; no_insertion: nothing is wrapped around it
  };

  void enter(NodeIndex node, const NodeEdits& edits);
  void enter_text(NodeIndex node, const NodeEdits& edits);
  void write_substituted(NodeIndex node, const NodeEdits& edits);
  void write_marked(NodeIndex node, const NodeEdits& edits);
  void write_splices(std::size_t begin, const std::vector<Splice>& splices, bool is_text);
  void leave(NodeIndex node);
  void leave_edited(NodeIndex node);
  void keep_open_end(NodeIndex node);
  Range taken_range(NodeIndex node, const NodeEdits& edits) const;
  void write_replaced(NodeIndex node, const NodeEdits& edits, std::size_t end);
  void write_start_tag(NodeIndex node, const NodeEdits& edits);
  bool write_content(NodeIndex node, const NodeEdits& edits);
  void write_end_tag(NodeIndex node, const NodeEdits& edits);
  std::size_t write_before(const NodeEdits& edits);
  void write_after(const NodeEdits& edits, std::size_t first_half);

  const NodeEdits* edits_of(NodeIndex node);
  const Halves& halves_of(const Operation& wrap);
  std::string content_of(const NodeEdits& edits, const Operation& operation) const;

  void copy_until(std::size_t end);
  void skip_until(std::size_t end);
  void replace_until(std::size_t end, std::string_view text);
  void insert(std::string_view text);
  void insert_until(std::size_t end, std::string_view text, bool is_text = false);

  const Tree& tree_;
  std::string_view source_;
  CodeScanner code_;
  EditGuard guard_;
  PatternBudget budget_;
  TreeWalk walk_;
  const std::vector<NodeEdits>& edits_;
  std::size_t next_edits_ = 0;
  const NodeEdits* current_ = nullptr;
  std::unordered_map<const Operation*, Halves> halves_;  // of each wrapper, once
  std::size_t position_ = 0;                             // in the old source
  std::vector<OpenNode> open_;
  WrittenEdit written_;
};

}  // namespace qo

#endif
