// The selector of a subcommand whose pages may be read by the library, too.

#ifndef QO_CLI_COMMANDS_OWN_SELECTOR_H
#define QO_CLI_COMMANDS_OWN_SELECTOR_H

#include <optional>

#include <qo_page/selector.h>

#include "args/options.h"
#include "host/selectors.h"

namespace cli {

// The selector for a page's own reading. The library reads its selectors only when it carries them
// out; for these, hints are given at most. Throws what is wrong with the selector.
inline std::optional<qo::Selector> own_selector(const Options& options) {
  if (!options.host) return qo::Selector(options.selector);
  give_hints(options.selector, options.strict);
  return std::nullopt;
}

}  // namespace cli

#endif
