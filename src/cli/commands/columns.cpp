#include "commands/columns.h"

#include <optional>
#include <string_view>

#include "io/failure.h"

namespace cli {

namespace {

CellForm form_of(const Options& options) {
  if (options.csv) return CellForm::commas;
  const bool is_alone = options.end_with_nul && options.columns.size() == 1;
  return is_alone ? CellForm::alone : CellForm::tabs;
}

}  // namespace

Columns::Columns(const Options& options)
    : form_(form_of(options)), seen_(new std::atomic<bool>[options.columns.size()]()) {
  for (const std::string& name : options.columns) {
    if (name.empty()) throw Failure("select: -a: a name is empty");
    // Attributes may begin with a colon, too.
    const bool is_attribute = name[0] != ':' || !is_field(name.substr(1));
    columns_.push_back({is_attribute ? name : name.substr(1), is_attribute});
    if (is_attribute) continue;
    check_fields("select: -a", {columns_.back().name}, options.host);
    has_fields_ = true;
  }
}

bool Columns::write(FieldWriter& writer, std::size_t match, std::string& line) const {
  line.clear();
  bool any = has_fields_;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    std::string_view cell;
    if (columns_[i].is_attribute) {
      const std::optional<std::string_view> value = writer.attribute(match, columns_[i].name);
      if (value && !seen_[i].load(std::memory_order_relaxed)) {
        seen_[i].store(true, std::memory_order_relaxed);
      }
      any = any || value;
      cell = value.value_or(std::string_view());
    } else {
      cell = writer.text(match, columns_[i].name);
    }
    append_cell(cell, i == 0, form_, line);
  }
  if (!has_matches_.load(std::memory_order_relaxed)) {
    has_matches_.store(true, std::memory_order_relaxed);
  }
  return any;
}

std::vector<std::string> Columns::missing() const {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < columns_.size() && has_matches_; ++i) {
    if (columns_[i].is_attribute && !seen_[i]) names.push_back(columns_[i].name);
  }
  return names;
}

}  // namespace cli
