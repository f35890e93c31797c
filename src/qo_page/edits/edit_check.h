// Whether an edited page reads back as what was asked.

#ifndef QO_PAGE_EDITS_EDIT_CHECK_H
#define QO_PAGE_EDITS_EDIT_CHECK_H

#include <qo_page/edits/edit_writer.h>

namespace qo {

// Throws Error, with a place in the old source, unless every kept node has its place and nesting in
// the new tree, every other node lies whole within what was put in, and the texts beside it are
// read as before.
void check_edit(const WrittenEdit& written, const Tree& old_tree, const Tree& new_tree);

}  // namespace qo

#endif
