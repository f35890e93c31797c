#include "commands/columns.h"

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

std::optional<std::string> Columns::line(FieldWriter& writer, const PageView& view,
                                         _qo_html* node) const {
  std::string line;
  bool any = has_fields_;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    std::string cell;
    if (columns_[i].is_attribute) {
      std::optional<std::string> value = view.attribute(node, columns_[i].name);
      if (value) seen_[i].store(true, std::memory_order_relaxed);
      any = any || value;
      cell = std::move(value).value_or("");
    } else {
      cell = writer.text(node, columns_[i].name);
    }
    append_cell(cell, i == 0, form_, line);
  }
  has_matches_.store(true, std::memory_order_relaxed);
  if (!any) return std::nullopt;
  return line;
}

std::vector<std::string> Columns::missing() const {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < columns_.size() && has_matches_; ++i) {
    if (columns_[i].is_attribute && !seen_[i]) names.push_back(columns_[i].name);
  }
  return names;
}

}  // namespace cli
