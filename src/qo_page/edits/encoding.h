// Whether an edit's characters mean the same in the page as where they come from.

#ifndef QO_PAGE_EDITS_ENCODING_H
#define QO_PAGE_EDITS_ENCODING_H

#include <qo_page/edits/edit_writer.h>

namespace qo {

// Edits are UTF-8. Throws Error when one brings characters beyond ASCII into a page that is not.
void check_encoding(const WrittenEdit& written, const Tree& tree);

}  // namespace qo

#endif
