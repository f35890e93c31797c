// Where code of PHP ends.

#ifndef QO_PAGE_TEMPLATE_PHP_CODE_H
#define QO_PAGE_TEMPLATE_PHP_CODE_H

#include <cstddef>
#include <string_view>

namespace qo {

// The offset of the "?>" that ends code from `begin` on: the first that is in no string, heredoc or
// comment between "/*" and "*/"; the size of the source when all is code up to its end, and npos
// when such a piece has no end.
std::size_t php_close(std::string_view source, std::size_t begin);

}  // namespace qo

#endif
