// Whether what an edit brings in leaves the blocks of template code whole.

#ifndef QO_PAGE_EDITS_BALANCE_H
#define QO_PAGE_EDITS_BALANCE_H

#include <qo_page/edits/edit_writer.h>

namespace qo {

// Throws Error when there are more halves of blocks in the new page than in the old one.
void check_balance(const WrittenEdit& written, const Tree& old_tree, const Tree& new_tree);

}  // namespace qo

#endif
