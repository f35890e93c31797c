// Plain text as markup, escaped where needed. Template code in it stays as given.

#ifndef QO_PAGE_TEXT_ESCAPE_H
#define QO_PAGE_TEXT_ESCAPE_H

#include <string>
#include <string_view>

#include <qo_page/template/dialect.h>

namespace qo {

// Between two such quotes; 0: without quotes, which the caller has found possible.
std::string escaped_value(std::string_view text, char quote, const Dialect& dialect);

std::string escaped_text(std::string_view text, const Dialect& dialect);

// The quotes for a value: the preferred ones, unless template code in it has these and not the
// others.
char quote_for(std::string_view text, char preferred, const Dialect& dialect);

// Whether the text can be a value without quotes.
bool fits_without_quotes(std::string_view text);

}  // namespace qo

#endif
