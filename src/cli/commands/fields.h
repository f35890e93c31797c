// What can be told of a match, by name: the fields of a line of JSON and the pseudo-columns.

#ifndef QO_CLI_COMMANDS_FIELDS_H
#define QO_CLI_COMMANDS_FIELDS_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "pages/matches.h"

namespace cli {

// The fields that are shown when none were chosen.
std::vector<std::string> default_fields(bool host, bool with_file);

bool is_field(const std::string& name);

// Throws Failure, which names the option, when one of them is not a field, or not one that the
// library has.
void check_fields(const std::string& option, const std::vector<std::string>& fields, bool host);

// Tells of the matches of one page.
class FieldWriter {
 public:
  // Both must outlive the object.
  FieldWriter(const std::string& file, Matches& matches) : file_(file), matches_(matches) {}

  // A line of JSON.
  std::string line(std::size_t match, const std::vector<std::string>& fields);

  // One field as text, and an attribute. The views are good until the next call.
  std::string_view text(std::size_t match, const std::string& field);
  std::optional<std::string_view> attribute(std::size_t match, const std::string& name) {
    return matches_.attribute(match, name, buffer_);
  }

  // As of Matches.
  std::optional<std::size_t> below(std::size_t match, const qo::Selector& selector) {
    return matches_.below(match, selector);
  }

 private:
  friend struct FieldValues;

  const std::string& file_;
  Matches& matches_;
  std::string buffer_;
};

}  // namespace cli

#endif
