// Tags that may not be what they seem.

#ifndef QO_PAGE_TOKENIZER_ODD_ATTRIBUTES_H
#define QO_PAGE_TOKENIZER_ODD_ATTRIBUTES_H

#include <string_view>

#include <qo_page/tokenizer/tokenizer.h>

namespace qo {

// Quotes in a name, after what may open code of a kind that is not known, say that the end of a
// value or of the tag may be none. Throws Error then.
void check_attributes(std::string_view source, const Token& tag, const Dialect& dialect);

}  // namespace qo

#endif
