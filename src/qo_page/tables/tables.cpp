#include <qo_page/tables.h>

#include <algorithm>

#include <qo_html/qo_html_walk.h>

#include <qo_page/base/ascii.h>
#include <qo_page/text/node_text.h>
#include <qo_page/text/readable_text.h>
#include <qo_page/tree/node.h>

namespace qo {

namespace {

constexpr std::size_t most_columns_spanned = 1000;
constexpr std::size_t most_rows_spanned = 65534;
constexpr std::size_t all_rows = SIZE_MAX;  // to the end of the group

// The number that an attribute begins with, after white space; 1 where there is none.
std::size_t span(const Node& cell, std::string_view name, std::size_t most) {
  for (const Attribute& attribute : cell.attributes) {
    if (!equals_without_case(attribute.name, name)) continue;
    const std::string value = value_of(attribute, TextForm::decoded);
    const char* digit = value.c_str();
    while (is_blank(*digit)) ++digit;
    if (!is_digit(*digit)) return 1;
    std::size_t number = 0;
    for (; is_digit(*digit) && number <= most; ++digit) {
      number = number * 10 + static_cast<std::size_t>(*digit - '0');
    }
    return std::min(number, most);
  }
  return 1;
}

struct Row {
  const Node* group;  // tbody, thead, tfoot; null when the row is in none
  std::vector<const Node*> cells;
};

// The rows below an element, in the order of the source. A cell whose row has no tag begins one, or
// goes on with that of the cell before it.
std::vector<Row> read_rows(const Node& table) {
  std::vector<Row> rows;
  const Node* row = nullptr;
  const Node* group = nullptr;
  TreeWalk walk(const_cast<Node*>(&table));
  walk.next();
  for (;;) {
    const TreeWalk::Event event = walk.step();
    if (event == TreeWalk::Event::end) return rows;
    const Node& here = *as_node(walk.node());
    if (here.kind != NodeKind::element) continue;
    const bool enters = event == TreeWalk::Event::enter;
    if (has(here.name, tag_flags::row_group)) {
      group = enters && here.has_content ? &here : nullptr;
      row = nullptr;
    } else if (here.name == Tag::tr_) {
      row = enters ? &here : nullptr;
      if (enters) rows.push_back({group, {}});
    } else if (enters && has(here.name, tag_flags::cell)) {
      if (row == nullptr) rows.push_back({group, {}});
      if (row == nullptr) row = as_node(here.parent);
      rows.back().cells.push_back(&here);
      walk.skip_children();
    } else if (enters && here.name == Tag::table_) {
      walk.skip_children();
    }
  }
}

bool is_in(const Row& row, Tag group) {
  return row.group != nullptr && row.group->name == group;
}

bool names_columns(const Row& row) {
  return !row.cells.empty() && std::all_of(row.cells.begin(), row.cells.end(),
                                           [](const Node* cell) { return cell->name == Tag::th_; });
}

std::size_t count_header_rows(const std::vector<Row>& rows) {
  const auto body = std::find_if(rows.begin(), rows.end(),
                                 [](const Row& row) { return !is_in(row, Tag::thead_); });
  if (body != rows.begin()) return static_cast<std::size_t>(body - rows.begin());
  return !rows.empty() && names_columns(rows.front()) ? 1 : 0;
}

}  // namespace

class TableReader {
 public:
  explicit TableReader(Table& table) : table_(table) { table_.texts_.emplace_back(); }

  void read(const Node& node) {
    std::vector<Row> rows = read_rows(node);
    std::stable_partition(rows.begin(), rows.end(),
                          [](const Row& row) { return !is_in(row, Tag::tfoot_); });
    table_.header_rows_ = count_header_rows(rows);
    const Node* group = nullptr;
    for (const Row& row : rows) {
      if (row.group != group) growing_.clear();
      group = row.group;
      add(row);
    }
  }

 private:
  // What spans rows.
  struct Growing {
    std::size_t column, width, rows_left;
    Table::Cell cell;
  };

  void add(const Row& row) {
    table_.grid_.emplace_back();
    std::vector<Growing> begun;
    for (const Growing& growing : growing_) fill(growing);
    std::size_t column = 0;
    for (const Node* node : row.cells) {
      while (is_taken(column)) ++column;
      const std::size_t rows = span(*node, "rowspan", most_rows_spanned);
      const Growing cell{column,
                         std::max<std::size_t>(1, span(*node, "colspan", most_columns_spanned)),
                         rows == 0 ? all_rows : rows, new_cell(*node)};
      fill(cell);
      begun.push_back(cell);
      column += cell.width;
    }
    growing_.insert(growing_.end(), begun.begin(), begun.end());
    const auto is_over = [](Growing& growing) { return --growing.rows_left == 0; };
    growing_.erase(std::remove_if(growing_.begin(), growing_.end(), is_over), growing_.end());
  }

  Table::Cell new_cell(const Node& node) {
    table_.texts_.push_back(readable_text(node, NestedTables::left_out));
    return static_cast<Table::Cell>(table_.texts_.size() - 1);
  }

  bool is_taken(std::size_t column) const {
    const std::vector<Table::Cell>& row = table_.grid_.back();
    return column < row.size() && row[column] != 0;
  }

  // Where two cells want one place, the first has it.
  void fill(const Growing& cell) {
    std::vector<Table::Cell>& row = table_.grid_.back();
    const std::size_t end = cell.column + cell.width;
    places_ += cell.width;
    if (places_ > Table::most_places) throw Error("the table has too many cells", 0);
    if (end > row.size()) row.resize(end);
    table_.columns_ = std::max(table_.columns_, row.size());
    for (std::size_t i = cell.column; i < end; ++i) {
      if (row[i] == 0) row[i] = cell.cell;
    }
  }

  Table& table_;
  std::vector<Growing> growing_;
  std::size_t places_ = 0;
};

Table::Table(const _qo_html* table) {
  const Node& node = *as_node(table);
  try {
    TableReader(*this).read(node);
  } catch (const Error& error) {
    throw Error(error.what(), node.extent.begin);
  }
}

const std::string& Table::text(std::size_t row, std::size_t column) const {
  const std::vector<Cell>& cells = grid_[row];
  return texts_[column < cells.size() ? cells[column] : 0];
}

}  // namespace qo
