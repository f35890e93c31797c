#include "pages/read_page.h"

#include <utility>

#include "io/failure.h"

namespace cli {

qo::Page read_page(Input& input, const Options& options) {
  try {
    qo::PageOptions how;
    how.dialect = options.dialect.empty() ? std::string(qo::dialect_of(input.name, input.text))
                                          : options.dialect;
    return qo::Page(std::move(input.text), std::move(how));
  } catch (const qo::Error& error) {
    throw Failure(input.name + ": " + error.what());
  }
}

}  // namespace cli
