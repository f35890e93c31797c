// Whether an edited page reads back as what was asked.

#ifndef QO_PAGE_EDITS_EDIT_CHECK_H
#define QO_PAGE_EDITS_EDIT_CHECK_H

#include <qo_page/edits/edit_writer.h>

namespace qo {

// Reads the new source, and throws Error, with a place in the old one, unless every kept node is
// where it must be, nested as it must be, all others are whole within what was put in, and the
// texts beside are read as before. `page`: the old one.
void check_edit(const WrittenEdit& written, const Page& page);

}  // namespace qo

#endif
