// Whether a browser reads a page in quirks mode, where a table does not end a paragraph.

#ifndef QO_PAGE_TREE_QUIRKS_H
#define QO_PAGE_TREE_QUIRKS_H

#include <string_view>

namespace qo {

// `doctype` is what is between "<!DOCTYPE" and ">".
bool is_quirky(std::string_view doctype);

}  // namespace qo

#endif
