// What a line of JSON tells of a match.

#ifndef QO_CLI_FIELDS_H
#define QO_CLI_FIELDS_H

#include <string>
#include <vector>

#include "json_text.h"
#include "line_index.h"
#include "page_view.h"

namespace cli {

// The fields that are shown when none were chosen.
std::vector<std::string> default_fields(bool host, bool with_file);

// Throws Failure when one of them is no field, or none of the library's.
void check_fields(const std::vector<std::string>& fields, bool host);

// One line of JSON for each match of a page.
class FieldWriter {
 public:
  // All must stay.
  FieldWriter(const std::vector<std::string>& fields, const std::string& file, const PageView& view,
              const LineIndex& lines)
      : fields_(fields), file_(file), view_(view), lines_(lines) {}

  std::string line(_qo_html* node) const;

 private:
  const std::vector<std::string>& fields_;
  const std::string& file_;
  const PageView& view_;
  const LineIndex& lines_;
};

}  // namespace cli

#endif
