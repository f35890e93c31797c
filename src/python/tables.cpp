#include "tables.h"

#include <string>

#include <qo_page/tables.h>

#include "document.h"
#include "errors.h"
#include "strings.h"

namespace qo_python {

namespace {

// A table and the page that it keeps.
struct TableHandle {
  DocumentPointer document;
  qo::Table table;
};

TableHandle read_table(const NodeHandle& node) {
  return unlocked(node.document.get(), [&] {
    return TableHandle{node.document, qo::Table(node.node)};
  });
}

py::list rows_of(const TableHandle& own) {
  py::list rows;
  for (std::size_t row = 0; row < own.table.rows(); ++row) {
    py::list texts(own.table.columns());
    for (std::size_t column = 0; column < own.table.columns(); ++column) {
      texts[column] = to_str(own.table.text(row, column));
    }
    rows.append(std::move(texts));
  }
  return rows;
}

// Node, text, and the places that it fills: row, column, rows, columns.
py::tuple cell_of(const TableHandle& own, std::size_t row, std::size_t column) {
  if (row >= own.table.rows() || column >= own.table.columns()) {
    throw py::index_error("the table has no such place");
  }
  const qo::Cell cell = own.table.cell(row, column);
  return py::make_tuple(handle_of(own.document, cell.node), to_str(own.table.text(row, column)),
                        cell.row, cell.column, cell.rows, cell.columns);
}

}  // namespace

void add_tables(py::module_& module) {
  py::class_<TableHandle>(module, "TableGrid", py::custom_type_setup(refuse_new))
      .def("rows", rows_of)
      .def("cell", cell_of)
      .def("header_rows", [](const TableHandle& own) { return own.table.header_rows(); });
  module.def("read_table", read_table);
}

}  // namespace qo_python
