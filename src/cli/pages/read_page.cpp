#include "pages/read_page.h"

#include <utility>

#include "io/failure.h"

namespace cli {

qo::Page read_page(Input& input, const Options& options) {
  try {
    return qo::Page(std::move(input.text), qo::PageOptions{options.templates ? "html" : "plain"});
  } catch (const qo::Error& error) {
    throw Failure(input.name + ": " + error.what());
  }
}

}  // namespace cli
