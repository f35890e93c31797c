// Tables as rows and columns of text.

#ifndef QO_PAGE_TABLES_H
#define QO_PAGE_TABLES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <qo_page/node.h>
#include <qo_page/page.h>
#include <qo_page/qo_page_export.h>

namespace qo {

// A cell, and the places that it fills: from its row and column on, so many of each.
struct Cell {
  Node node;  // null: there is no cell
  std::size_t row, column;
  std::size_t rows, columns;
};

// The grid of a table, as the HTML standard forms it: a cell fills all the places that it spans,
// and the rows of a tfoot come last. Tables within the table are no part of it, nor of its cells.
// The page must live as long.
class QO_PAGE_API Table {
 public:
  // The most places that a grid may have.
  static constexpr std::size_t most_places = 16'777'216;

  // Reads the table, which is an element of a page. Takes time for the element and for the places
  // of the grid. Throws Error when these are more than `most_places`.
  explicit Table(Node table);

  std::size_t rows() const { return grid_.size(); }
  std::size_t columns() const { return columns_; }

  // How many rows at the top name the columns: those of a thead or, where there is none, the first
  // row if all its cells are th.
  std::size_t header_rows() const { return header_rows_; }

  // The cell that fills a place. Where there is none, it is a cell of that one place without a
  // node. Where two cells want one place, the first one has it, and both keep their spans. Throws
  // Error for a place that is not in the grid.
  Cell cell(std::size_t row, std::size_t column) const;

  // The cell's text as a person reads it; empty where there is no cell. Throws Error as cell().
  const std::string& text(std::size_t row, std::size_t column) const;

 private:
  using CellNumber = std::uint32_t;  // a place in cells_ and texts_; 0: no cell

  friend class TableReader;

  CellNumber number_at(std::size_t row, std::size_t column) const;

  std::vector<Cell> cells_;
  std::vector<std::string> texts_;
  std::vector<std::vector<CellNumber>> grid_;  // rows may be shorter than the longest
  std::size_t columns_ = 0;
  std::size_t header_rows_ = 0;
};

}  // namespace qo

#endif
