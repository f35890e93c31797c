#include <algorithm>
#include <atomic>
#include <optional>
#include <utility>

#include "commands/commands.h"
#include "host/differences.h"
#include "host/host_page.h"
#include "host/reading.h"
#include "host/written_forms.h"
#include "io/line_index.h"
#include "io/text.h"
#include "page_view.h"
#include "session.h"

namespace cli {

namespace {

// What a host makes of a page, as far as it reads it.
struct HostPage {
  Document document;
  std::string_view read;
  std::optional<Refusal> refusal;
};

HostPage read_as_host(const std::string& text) {
  HostPage page{try_to_parse(text, false), text, std::nullopt};
  if (page.document != nullptr) return page;
  page.refusal = find_refusal(text);
  page.read = page.read.substr(0, page.refusal->offset);
  page.document = try_to_parse(std::string(page.read), false);
  return page;
}

std::vector<Difference> check(const qo::Page& page, const LineIndex& lines, bool bytes) {
  const HostPage host = read_as_host(page.source());
  const Reading reading = host_reading(host.document.get(), host.read);
  std::vector<Difference> found =
      find_differences(page_reading(page), reading, page.source(), lines);
  if (bytes) add_written_forms(reading, host.read, !host.refusal, found);
  if (host.refusal) found.push_back({host.refusal->offset, host.refusal->reason});
  std::stable_sort(found.begin(), found.end(),
                   [](const Difference& a, const Difference& b) { return a.offset < b.offset; });
  return found;
}

}  // namespace

// A page that hosts read as it is counts as found, in terms of the exit status.
int run_check(const Options& options) {
  Session session(options);
  std::atomic<bool> different = false;
  const int status = session.run([&](Input& input, Output& out) {
    const qo::Page page = read_page(input, options);
    const LineIndex lines(page.source());
    const std::vector<Difference> found = check(page, lines, options.bytes);
    for (const Difference& difference : found) {
      out.paint("35", printable(input.name));
      out.write(":" + lines.place(difference.offset).text() + ": " + difference.what + "\n");
    }
    if (!found.empty()) different = true;
    return found.empty() ? Found::something : Found::nothing;
  });
  return status == status_found && different ? status_not_found : status;
}

}  // namespace cli
