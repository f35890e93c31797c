// Selectors: a string read into a chain of simple selectors and combinators. Every string gives a
// chain.

#ifndef QO_HTML_SELECTOR_H
#define QO_HTML_SELECTOR_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

enum SelectorKind : std::int32_t {
  SEL_TAG = 1,
  SEL_ANY = 2,
  SEL_CLASS = 3,
  SEL_ID = 4,
  SEL_PSEUDO = 5,
  SEL_ATTR = 6,
  SEL_CHILD = 7,
  SEL_DESCENDANT = 8,
};

// One step of a chain.
class htmlSelector {
 public:
  std::int32_t type;           // a SelectorKind
  std::string token;           // without the sigil; " " for SEL_DESCENDANT
  htmlSelector* prevSelector;  // null for the first step
  htmlSelector* nextSelector;  // null for the last step

  htmlSelector(std::int32_t kind, std::string text);
  virtual ~htmlSelector();
};

// Splits the token of a SEL_ATTR step at its first "=" outside quotes, appending to `name` and
// `value`; quote characters are dropped. False when there is no such "=".
bool split_attribute_selector(const std::string& text, std::string& name, std::string& value);

// Reads a name at `cursor`, a NUL-terminated sequence, and moves `cursor` to where parsing goes on.
std::string read_selector_name(const char*& cursor);

namespace qo_html_inner {

// The steps in order; owns them and destroys them first to last.
using SelectorChain = std::vector<std::unique_ptr<htmlSelector>>;

// Reads a selector up to its end or its first NUL byte.
SelectorChain parse_selector(const std::string& selector);

}  // namespace qo_html_inner

#endif
