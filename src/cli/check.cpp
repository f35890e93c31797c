#include "commands.h"
#include "page.h"
#include "session.h"
#include "text.h"

#include <algorithm>

namespace cli {

namespace {

constexpr std::size_t excerpt_length = 30;
constexpr std::size_t lead_length = 12;  // of the excerpt, in front of the difference

// What stands around the place of the first difference, on one line.
std::string excerpt(std::string_view text, std::size_t difference) {
  const std::size_t line = text.substr(0, difference).rfind('\n') + 1;  // npos + 1 is 0
  const std::size_t from = std::max(line, difference - std::min(difference, lead_length));
  return quoted(text.substr(from, text.find('\n', difference) - from), excerpt_length);
}

}  // namespace

// Tells of the first difference on a line of its own. A page that comes back is found, in terms of
// the exit status.
int run(const CheckOptions& options) {
  Session session(options);
  bool different = false;
  const int status = session.run(options.files, [&](Input& input) {
    const std::string back = parse_page(input, options.drop_comments)->outerHTML();
    require_memory();
    const std::string& text = input.text;
    if (back == text) return Found::something;
    different = true;
    const auto first = std::mismatch(text.begin(), text.end(), back.begin(), back.end()).first;
    const std::size_t offset = static_cast<std::size_t>(first - text.begin());
    session.out().paint("35", input.name);
    session.out().write(":" + place_of(text, offset) + ": " + excerpt(text, offset) +
                        " comes back as " + excerpt(back, offset) + "\n");
    return Found::nothing;
  });
  return status == status_found && different ? status_not_found : status;
}

}  // namespace cli
