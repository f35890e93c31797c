// What no edit may do, as far as the old page tells.

#ifndef QO_PAGE_EDITS_EDIT_GUARD_H
#define QO_PAGE_EDITS_EDIT_GUARD_H

#include <optional>

#include <qo_page/edits/node_edits.h>
#include <qo_page/template/code_blocks.h>
#include <qo_page/tree/content_model.h>

namespace qo {

// That of a node's content when the edits are made.
ContentModel content_model_after(const Tree& tree, const NodeEdits& edits);

class EditGuard {
 public:
  // The tree must outlive the object.
  explicit EditGuard(const Tree& tree) : tree_(tree) {}

  // Throws Error when the edits would give a part of a block of template code another fate than the
  // rest, or would have what stays of the content, or comes after it, read otherwise than before.
  void check(const NodeEdits& edits);

 private:
  void check_blocks(const NodeEdits& edits);
  void check_content(const NodeEdits& edits) const;
  void check_rename(const NodeEdits& edits) const;

  const Tree& tree_;
  std::optional<CodeBlocks> blocks_;  // made when an edit needs them
};

}  // namespace qo

#endif
