// Content that is not markup: that of script, style, textarea and their like.

#ifndef QO_PAGE_TOKENIZER_RAW_CONTENT_H
#define QO_PAGE_TOKENIZER_RAW_CONTENT_H

#include <cstddef>
#include <string_view>

#include <qo_page/base/finder.h>
#include <qo_page/base/tags.h>
#include <qo_page/template/template_code.h>

namespace qo {

// Where the content from `begin` on of an element of that name ends: at the "<" of its end tag, or
// with the source. `comment_end` finds "-->".
std::size_t raw_content_end(std::string_view source, std::size_t begin, Tag name, CodeScanner& code,
                            Finder& comment_end);

}  // namespace qo

#endif
