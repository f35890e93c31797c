#include <qo_page/tables.h>

#include <algorithm>
#include <string>
#include <string_view>

#include <qo_page/base/ascii.h>
#include <qo_page/text/attribute_value.h>
#include <qo_page/text/readable_text.h>
#include <qo_page/tree/node_access.h>
#include <qo_page/tree/tree_walk.h>

namespace qo {

namespace {

constexpr std::size_t most_columns_spanned = 1000;
constexpr std::size_t most_rows_spanned = 65534;
constexpr std::size_t all_rows = SIZE_MAX;  // to the end of the group

// The number that an attribute begins with, after white space; 1 where there is none.
std::size_t span(const Tree& tree, NodeIndex cell, std::string_view name, std::size_t most) {
  const AttributeRecord* const attribute = tree.find_attribute(cell, name);
  std::string buffer;
  std::string_view rest = attribute == nullptr ? "" : decoded_value(tree, *attribute, buffer);
  while (!rest.empty() && is_blank(rest.front())) rest.remove_prefix(1);
  if (rest.empty() || !is_digit(rest.front())) return 1;
  std::size_t number = 0;
  for (; !rest.empty() && is_digit(rest.front()) && number <= most; rest.remove_prefix(1)) {
    number = number * 10 + static_cast<std::size_t>(rest.front() - '0');
  }
  return std::min(number, most);
}

struct Row {
  NodeIndex group;  // tbody, thead, tfoot; none when the row is in none
  std::vector<NodeIndex> cells;
};

// The rows below an element, in the order of the source. A cell outside of a row begins one, or
// continues the row of the cell before it.
std::vector<Row> read_rows(const Tree& tree, NodeIndex table) {
  std::vector<Row> rows;
  NodeIndex row = no_node;
  NodeIndex group = no_node;
  TreeWalk walk(tree, table);
  walk.step();
  for (;;) {
    const TreeWalk::Event event = walk.step();
    if (event == TreeWalk::Event::end) return rows;
    const NodeIndex node = walk.node();
    const NodeRecord& here = tree[node];
    if (here.kind != NodeKind::element) continue;
    const bool enters = event == TreeWalk::Event::enter;
    if (has(here.tag, tag_flags::row_group)) {
      group = enters && here.has_content ? node : no_node;
      row = no_node;
    } else if (here.tag == Tag::tr_) {
      row = enters ? node : no_node;
      if (enters) rows.push_back({group, {}});
    } else if (enters && has(here.tag, tag_flags::cell)) {
      if (row == no_node) rows.push_back({group, {}});
      if (row == no_node) row = here.parent;
      rows.back().cells.push_back(node);
      walk.skip_children();
    } else if (enters && here.tag == Tag::table_) {
      walk.skip_children();
    }
  }
}

bool is_in(const Tree& tree, const Row& row, Tag group) {
  return row.group != no_node && tree[row.group].tag == group;
}

bool names_columns(const Tree& tree, const Row& row) {
  return !row.cells.empty() && std::all_of(row.cells.begin(), row.cells.end(), [&](NodeIndex cell) {
    return tree[cell].tag == Tag::th_;
  });
}

std::size_t count_header_rows(const Tree& tree, const std::vector<Row>& rows) {
  const auto body = std::find_if(rows.begin(), rows.end(),
                                 [&](const Row& row) { return !is_in(tree, row, Tag::thead_); });
  if (body != rows.begin()) return static_cast<std::size_t>(body - rows.begin());
  return !rows.empty() && names_columns(tree, rows.front()) ? 1 : 0;
}

}  // namespace

class TableReader {
 public:
  TableReader(const Tree& tree, Table& table) : tree_(tree), table_(table) {
    table_.texts_.emplace_back();
    table_.cells_.emplace_back();
  }

  void read(NodeIndex node) {
    std::vector<Row> rows = read_rows(tree_, node);
    std::stable_partition(rows.begin(), rows.end(),
                          [this](const Row& row) { return !is_in(tree_, row, Tag::tfoot_); });
    table_.header_rows_ = count_header_rows(tree_, rows);
    NodeIndex group = no_node;
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
    Table::CellNumber cell;
  };

  void add(const Row& row) {
    table_.grid_.emplace_back();
    std::vector<Growing> begun;
    for (const Growing& growing : growing_) fill(growing);
    std::size_t column = 0;
    for (const NodeIndex node : row.cells) {
      while (is_taken(column)) ++column;
      const std::size_t rows = span(tree_, node, "rowspan", most_rows_spanned);
      const std::size_t width =
          std::max<std::size_t>(1, span(tree_, node, "colspan", most_columns_spanned));
      const Growing cell{column, width, rows == 0 ? all_rows : rows, new_cell(node, column, width)};
      fill(cell);
      begun.push_back(cell);
      column += cell.width;
    }
    growing_.insert(growing_.end(), begun.begin(), begun.end());
    const auto is_over = [](Growing& growing) { return --growing.rows_left == 0; };
    growing_.erase(std::remove_if(growing_.begin(), growing_.end(), is_over), growing_.end());
  }

  Table::CellNumber new_cell(NodeIndex node, std::size_t column, std::size_t width) {
    table_.texts_.push_back(readable_text(tree_, node, NestedTables::left_out));
    const std::size_t row = table_.grid_.size() - 1;
    table_.cells_.push_back({NodeAccess::node(tree_, node), row, column, 0, width});
    return static_cast<Table::CellNumber>(table_.texts_.size() - 1);
  }

  bool is_taken(std::size_t column) const {
    const std::vector<Table::CellNumber>& row = table_.grid_.back();
    return column < row.size() && row[column] != 0;
  }

  // Where two cells want one place, the first has it.
  void fill(const Growing& cell) {
    std::vector<Table::CellNumber>& row = table_.grid_.back();
    const std::size_t end = cell.column + cell.width;
    places_ += cell.width;
    if (places_ > Table::most_places) throw Error("the table has too many cells", 0);
    if (end > row.size()) row.resize(end);
    table_.columns_ = std::max(table_.columns_, row.size());
    for (std::size_t i = cell.column; i < end; ++i) {
      if (row[i] == 0) row[i] = cell.cell;
    }
    ++table_.cells_[cell.cell].rows;
  }

  const Tree& tree_;
  Table& table_;
  std::vector<Growing> growing_;
  std::size_t places_ = 0;
};

Table::Table(Node table) {
  const Tree& tree = NodeAccess::tree(table);
  const NodeIndex node = NodeAccess::index(table);
  try {
    TableReader(tree, *this).read(node);
  } catch (const Error& error) {
    throw Error(error.what(), tree[node].begin);
  }
}

Table::CellNumber Table::number_at(std::size_t row, std::size_t column) const {
  if (row >= rows() || column >= columns()) throw Error("the table has no such place");
  const std::vector<CellNumber>& cells = grid_[row];
  return column < cells.size() ? cells[column] : 0;
}

Cell Table::cell(std::size_t row, std::size_t column) const {
  const CellNumber number = number_at(row, column);
  return number == 0 ? Cell{Node(), row, column, 1, 1} : cells_[number];
}

const std::string& Table::text(std::size_t row, std::size_t column) const {
  return texts_[number_at(row, column)];
}

}  // namespace qo
