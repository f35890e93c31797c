// Names of attributes that are to go.

#ifndef QO_PAGE_EDITS_ATTRIBUTE_NAMES_H
#define QO_PAGE_EDITS_ATTRIBUTE_NAMES_H

#include <cstddef>
#include <string_view>

namespace qo {

// Whether a name fits a pattern, whatever the case. A "*" is any text: alone, or after the first
// character, since names such as "*ngIf" begin with one.
bool is_named(std::string_view name, std::string_view pattern);

}  // namespace qo

#endif
