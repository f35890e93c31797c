// The edits that the old page rules out.

#ifndef QO_PAGE_EDITS_EDIT_GUARD_H
#define QO_PAGE_EDITS_EDIT_GUARD_H

#include <optional>
#include <string>

#include <qo_page/edits/author_reading.h>
#include <qo_page/edits/node_edits.h>
#include <qo_page/template/code_blocks.h>
#include <qo_page/tree/content_model.h>

namespace qo {

// The content model of a node after its edits.
ContentModel content_model_after(const Tree& tree, const NodeEdits& edits);

class EditGuard {
 public:
  // The tree must outlive the object.
  explicit EditGuard(const Tree& tree) : tree_(tree) {}

  // Throws Error when the edits would touch what is elsewhere for the author than for a browser,
  // separate the parts of a block of template code, or change how the rest of the content, or what
  // comes after it, is read.
  void check(const NodeEdits& edits);

  // Whether the start tag stays as it is, and ends for the author where it does for a browser,
  // although its brackets look odd. To be asked after the check.
  bool keeps_odd_tag(const NodeEdits& edits) const;
  // Throws Error when a block of template code is partly in that range of the page, which `what`
  // tells of.
  void check_uncut(Range range, const std::string& what, std::size_t place);

  // Those of the page, read when they are first asked for; null when it has no template code.
  const CodeBlocks* blocks();

 private:
  void check_place(const NodeEdits& edits);
  void check_text_place(NodeIndex text) const;
  void check_extent(const NodeEdits& edits) const;
  void check_blocks(const NodeEdits& edits);
  void check_content(const NodeEdits& edits) const;
  void check_rename(const NodeEdits& edits) const;

  const Tree& tree_;
  std::optional<AuthorReading> author_;  // these are made when an edit needs them
  std::optional<CodeBlocks> blocks_;
};

}  // namespace qo

#endif
