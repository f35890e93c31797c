// How the value of an attribute is spelled when it is set.

#ifndef QO_PAGE_EDITS_VALUE_SPELLING_H
#define QO_PAGE_EDITS_VALUE_SPELLING_H

#include <string>

#include <qo_page/template/dialect.h>

namespace qo {

struct SpelledValue {
  std::string text;  // as written
  char quote;        // 0: none
};

// The value between two such quotes (0: without), with the old one's spelling of what both begin
// and end with.
std::string respelled_value(const SpelledValue& old, const std::string& value, char quote,
                            const Dialect& dialect);

}  // namespace qo

#endif
