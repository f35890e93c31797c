#include "host/host_check.h"

#include <algorithm>
#include <optional>
#include <string>

#include "host/host_page.h"
#include "host/reading.h"
#include "host/written_forms.h"

namespace cli {

namespace {

// What a host makes of a page, up to where it stops reading.
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

}  // namespace

std::vector<Difference> host_differences(const qo::Page& page, const qo::LineIndex& lines,
                                         bool with_bytes) {
  const HostPage host = read_as_host(page.source());
  const HostReading reading = host_reading(host.document.get(), host.read);
  std::vector<Difference> found =
      find_differences(page_reading(page), reading.places, page.source(), lines);
  if (with_bytes) add_written_forms(reading, host.read, !host.refusal, found);
  if (host.refusal) found.push_back({host.refusal->offset, host.refusal->reason});
  std::stable_sort(found.begin(), found.end(),
                   [](const Difference& a, const Difference& b) { return a.offset < b.offset; });
  require_memory();
  return found;
}

}  // namespace cli
