// Cells of a line, with tabs or commas between them.

#ifndef QO_CLI_IO_CELLS_H
#define QO_CLI_IO_CELLS_H

#include <string>
#include <string_view>

namespace cli {

enum class CellForm { tabs, commas, alone };

// Appends a cell to a line, with what is between it and one before it. With tabs, the tabs, line
// breaks and backslashes of a cell are escaped (\t, \n, \r, \\); with commas, it is put in quotes
// where it needs them. One that is alone stays as it is.
void append_cell(std::string_view cell, bool is_first, CellForm form, std::string& line);

}  // namespace cli

#endif
