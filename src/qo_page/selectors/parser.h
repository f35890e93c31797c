// From the text of a selector to what it is made of.

#ifndef QO_PAGE_SELECTORS_PARSER_H
#define QO_PAGE_SELECTORS_PARSER_H

#include <string>

#include <qo_page/selectors/syntax.h>

namespace qo::selectors {

// Throws SelectorError.
List parse(const std::string& text);

}  // namespace qo::selectors

#endif
