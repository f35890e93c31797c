#include "commands/columns.h"

#include <optional>
#include <string_view>
#include <utility>

#include "io/failure.h"
#include "io/text.h"

namespace cli {

namespace {

CellForm form_of(const Options& options) {
  if (options.csv) return CellForm::commas;
  const bool is_alone = options.end_with_nul && options.columns.size() == 1;
  return is_alone ? CellForm::alone : CellForm::tabs;
}

// Where the "@" is that ends a selector in front of a name; 0 where there is none. Names may begin
// with one.
std::size_t selector_end(const std::string& name) {
  const std::size_t at = find_outside(name, '@', 1);
  return at == name.size() ? 0 : at;
}

}  // namespace

Columns::Columns(const Options& options)
    : form_(form_of(options)), seen_(new std::atomic<bool>[options.columns.size()]()) {
  for (const std::string& name : options.columns) {
    if (name.empty()) throw Failure("select: -a: a name is empty");
    const std::size_t at = selector_end(name);
    std::string own = at == 0 ? name : name.substr(at + 1);
    std::optional<qo::Selector> selector;
    if (at != 0) selector.emplace(name.substr(0, at));
    if (at != 0 && options.host)
      throw Failure("select: -a: the library finds no " + quoted(name, 40));
    if (own.empty())
      throw Failure("select: -a: after the \"@\" of " + quoted(name, 40) + " comes a name");
    // Attributes may begin with a colon, too.
    const bool is_attribute = own[0] != ':' || !is_field(own.substr(1));
    if (!is_attribute) own.erase(0, 1);
    columns_.push_back({name, std::move(selector), std::move(own), is_attribute});
    if (is_attribute) continue;
    check_fields("select: -a", {columns_.back().name}, options.host);
    has_fields_ = true;
  }
}

bool Columns::write(FieldWriter& writer, std::size_t match, std::string& line) const {
  line.clear();
  bool any = has_fields_;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    const Column& column = columns_[i];
    const std::optional<std::size_t> place =
        column.selector ? writer.below(match, *column.selector) : match;
    std::string_view cell;
    if (column.is_attribute) {
      const std::optional<std::string_view> value =
          place ? writer.attribute(*place, column.name) : std::nullopt;
      if (value && !seen_[i].load(std::memory_order_relaxed)) {
        seen_[i].store(true, std::memory_order_relaxed);
      }
      any = any || value;
      cell = value.value_or(std::string_view());
    } else if (place) {
      cell = writer.text(*place, column.name);
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
    if (columns_[i].is_attribute && !seen_[i]) names.push_back(columns_[i].shown);
  }
  return names;
}

}  // namespace cli
