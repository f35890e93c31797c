// Character references as a browser decodes them.

#ifndef QO_PAGE_DECODE_H
#define QO_PAGE_DECODE_H

#include <cstddef>
#include <string>
#include <string_view>

#include <qo_page/qo_page_export.h>

namespace qo {

// In the value of an attribute, a name without ";" is left alone where "=", a letter or a digit
// follows it.
enum class DecodeMode { text, attribute };

// The text with all character references replaced by UTF-8: the HTML standard's 2,231 names, and
// numeric references with their corrections. Anything else stays, bytes that are not UTF-8
// included. Time grows with the length of the text.
QO_PAGE_API std::string decode(std::string_view text, DecodeMode mode = DecodeMode::text);

// The length of the reference at `offset`, where an "&" is; 0 when what follows is none.
QO_PAGE_API std::size_t reference_length(std::string_view text, std::size_t offset,
                                         DecodeMode mode);

}  // namespace qo

#endif
