// What can be told of a match, by name: the fields of a line of JSON and the pseudo-columns.

#ifndef QO_CLI_COMMANDS_FIELDS_H
#define QO_CLI_COMMANDS_FIELDS_H

#include <optional>
#include <string>
#include <vector>

#include "commands/node_path.h"
#include "io/json_text.h"
#include "io/line_index.h"
#include "page_view.h"

namespace cli {

// The fields that are shown when none were chosen.
std::vector<std::string> default_fields(bool host, bool with_file);

bool is_field(const std::string& name);

// Throws Failure, which names the option, when one of them is no field, or none of the library's.
void check_fields(const std::string& option, const std::vector<std::string>& fields, bool host);

// Tells of the matches of one page.
class FieldWriter {
 public:
  // Both must stay.
  FieldWriter(const std::string& file, const PageView& view) : file_(file), view_(view) {}

  // A line of JSON.
  std::string line(_qo_html* node, const std::vector<std::string>& fields);

  // One field as text.
  std::string text(_qo_html* node, const std::string& field);

  Place place(_qo_html* node);

 private:
  friend struct Field;
  friend struct FieldValues;

  const std::string& file_;
  const PageView& view_;
  std::optional<LineIndex> lines_;
  std::optional<NodePaths> paths_;
};

}  // namespace cli

#endif
