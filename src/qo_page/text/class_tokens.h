// The tokens of a class attribute.

#ifndef QO_PAGE_TEXT_CLASS_TOKENS_H
#define QO_PAGE_TEXT_CLASS_TOKENS_H

#include <string_view>
#include <vector>

#include <qo_page/tokenizer/tokenizer.h>

namespace qo {

struct ClassToken {
  Range range;
  bool is_whole;   // a class: no way through the template joins it to other characters
  bool is_always;  // it is there whatever way is taken
};

// The tokens of the value at `value`, as written. They are separated by blanks and by code that
// begins or ends a block; code that writes text is a part of its token.
std::vector<ClassToken> class_tokens(std::string_view source, Range value, CodeScanner& code);

}  // namespace qo

#endif
