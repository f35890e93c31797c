// Template code in the value of an attribute.

#ifndef QO_PAGE_EDITS_VALUE_CODE_H
#define QO_PAGE_EDITS_VALUE_CODE_H

#include <cstddef>
#include <string_view>
#include <vector>

#include <qo_page/edits/substituter.h>

namespace qo {

// Whether a value without quotes is an expression of a component: {x}, `x`, {{ a: 1 }}; {{ x }} is
// template code.
bool is_expression(std::string_view value);

// Throws Error when what is on both sides of an end of a splice is code together, in the value that
// was made.
void check_joins_no_code(std::string_view value, const std::vector<Splice>& splices,
                         const Dialect& dialect, std::size_t place);

}  // namespace qo

#endif
