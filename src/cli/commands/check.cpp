#include <atomic>
#include <vector>

#include "commands/commands.h"
#include "host/host_check.h"
#include "io/text.h"
#include "pages/read_page.h"
#include "session.h"

namespace cli {

// For the exit status, a page that hosts read as it is counts as found.
int run_check(const Options& options) {
  Session session(options);
  std::atomic<bool> different = false;
  const int status = session.run([&](Input& input, Output& out) {
    const qo::Page page = read_page(input, options);
    const qo::LineIndex lines(page.source());
    const std::vector<Difference> found = host_differences(page, lines, options.bytes);
    for (const Difference& difference : found) {
      out.paint("35", printable(input.name));
      out.write(":" + shown_place(lines.position(difference.offset)) + ": " + difference.what +
                "\n");
    }
    if (!found.empty()) different = true;
    return found.empty() ? Found::something : Found::nothing;
  });
  return status == status_found && different ? status_not_found : status;
}

}  // namespace cli
