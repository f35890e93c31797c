// What a selector says of an attribute: [name], [name="value"], [name^=value i].

#ifndef QO_PAGE_SELECTORS_ATTRIBUTE_H
#define QO_PAGE_SELECTORS_ATTRIBUTE_H

#include <qo_page/selectors/reader.h>
#include <qo_page/selectors/syntax.h>

namespace qo::selectors {

// At a "[":   "[" name (operator (name | string) ("i" | "s")?)? "]"
AttributeTest read_attribute(Reader& reader);

}  // namespace qo::selectors

#endif
