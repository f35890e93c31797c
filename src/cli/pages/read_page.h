// Pages of inputs, by their own tags.

#ifndef QO_CLI_PAGES_READ_PAGE_H
#define QO_CLI_PAGES_READ_PAGE_H

#include <qo_page/page.h>

#include "args/options.h"
#include "io/files.h"

namespace cli {

// Takes the text of the input along. Throws Failure.
qo::Page read_page(Input& input, const Options& options);

}  // namespace cli

#endif
