// Encodings that a page cannot be read in as it is.

#ifndef QO_PAGE_BASE_BYTE_ENCODING_H
#define QO_PAGE_BASE_BYTE_ENCODING_H

#include <string_view>

namespace qo {

// The name of the text's encoding, as iconv knows it, when a byte below 128 is not always that
// ASCII character in it; empty for all other encodings.
std::string_view encoding_beyond_ascii(std::string_view text);

}  // namespace qo

#endif
