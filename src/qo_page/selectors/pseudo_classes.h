// The names after a colon, and what each stands for.

#ifndef QO_PAGE_SELECTORS_PSEUDO_CLASSES_H
#define QO_PAGE_SELECTORS_PSEUDO_CLASSES_H

#include <optional>
#include <string>
#include <string_view>

#include <qo_page/selectors/syntax.h>

namespace qo::selectors {

// Those that take an argument.
enum class Function {
  any,
  negation,
  has,
  nth_child,
  nth_last_child,
  nth_of_type,
  nth_last_of_type,
  contains,
  contains_own,
  matches,
  language,
  direction,
  nearest,  // for definitions only
};

// Names are in lower case. What begins with "-qo-" is for definitions only.
std::optional<Fact> find_fact(std::string_view name);
std::optional<Function> find_function(std::string_view name);

// The selector that the name is short for; empty when there is none.
std::string_view find_definition(std::string_view name);

// Why a name of CSS has no meaning here; empty for a name that CSS does not have.
std::string reason_against(std::string_view name);

// The known name that is most like this one, with its colon; empty when none is close.
std::string nearest_name(std::string_view name);

}  // namespace qo::selectors

#endif
