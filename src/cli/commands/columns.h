// The columns of `qo select -a`: attributes, and what begins with a colon.

#ifndef QO_CLI_COMMANDS_COLUMNS_H
#define QO_CLI_COMMANDS_COLUMNS_H

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <qo_page/selector.h>

#include "args/options.h"
#include "commands/fields.h"
#include "io/cells.h"

namespace cli {

// Several threads may use it.
class Columns {
 public:
  // Throws Failure when a name is not that of a column.
  explicit Columns(const Options& options);

  // Puts the cells of a match into `line`, whose former content is lost. Returns false when there
  // are none: the match has none of the attributes, and nothing else was asked for.
  bool write(FieldWriter& writer, std::size_t match, std::string& line) const;

  // The attributes that no match had, if there was any match.
  std::vector<std::string> missing() const;

 private:
  struct Column {
    std::string shown;                     // as it was given
    std::optional<qo::Selector> selector;  // of the element below the match; none: the match itself
    std::string name;
    bool is_attribute;
  };

  std::vector<Column> columns_;
  CellForm form_;
  bool has_fields_ = false;
  std::unique_ptr<std::atomic<bool>[]> seen_;  // by column
  mutable std::atomic<bool> has_matches_ = false;
};

}  // namespace cli

#endif
