// What no edit may do, as far as the old page tells.

#ifndef QO_PAGE_EDITS_EDIT_GUARD_H
#define QO_PAGE_EDITS_EDIT_GUARD_H

#include <optional>
#include <string>

#include <qo_page/edits/node_edits.h>
#include <qo_page/template/code_blocks.h>
#include <qo_page/tokenizer/tokenizer.h>
#include <qo_page/tree/reading.h>

namespace qo {

// That of a node's content when the edits are made.
Reading reading_after(const NodeEdits& edits);

class EditGuard {
 public:
  // The page must outlive the object.
  explicit EditGuard(const Page& page) : page_(page) {}

  // Throws Error when the edits would give a part of a block of template code another fate than the
  // rest, or would have what stays of the content, or comes after it, read otherwise than before.
  void check(const NodeEdits& edits);

  // Throws Error when a block of template code is partly in that range of the page, which `what`
  // tells of.
  void check_uncut(Range range, const std::string& what, std::size_t place);

  // Those of the page, read when they are first asked for; null when it has no template code.
  const CodeBlocks* blocks();

 private:
  void check_blocks(const NodeEdits& edits);
  void check_content(const NodeEdits& edits) const;
  void check_rename(const NodeEdits& edits) const;

  const Page& page_;
  std::optional<CodeBlocks> blocks_;  // made when an edit needs them
};

}  // namespace qo

#endif
