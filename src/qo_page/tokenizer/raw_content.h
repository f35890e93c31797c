// Content that is not markup: that of script, style, textarea and their like.

#ifndef QO_PAGE_TOKENIZER_RAW_CONTENT_H
#define QO_PAGE_TOKENIZER_RAW_CONTENT_H

#include <cstddef>
#include <string_view>

#include <qo_page/base/finder.h>
#include <qo_page/template/template_code.h>

namespace qo {

// An element whose content is no markup.
struct RawElement {
  std::string_view name;
  bool is_script = false;     // its comments may hold whole scripts
  bool is_plaintext = false;  // it never ends
};

// Where the content from `begin` on ends: at the "<" of the element's end tag, or with the source.
// `comment_end` finds "-->".
std::size_t raw_content_end(std::string_view source, std::size_t begin, const RawElement& element,
                            CodeScanner& code, Finder& comment_end);

}  // namespace qo

#endif
