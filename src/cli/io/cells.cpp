#include "io/cells.h"

namespace cli {

namespace {

// After the backslash; 0 for a character that needs none.
char escape_of(char c) {
  switch (c) {
    case '\t':
      return 't';
    case '\n':
      return 'n';
    case '\r':
      return 'r';
    case '\\':
      return '\\';
    default:
      return '\0';
  }
}

void append_escaped(std::string_view cell, std::string& line) {
  std::size_t begin = 0;  // of what is not yet appended
  for (std::size_t i = 0; i < cell.size(); ++i) {
    const char escape = escape_of(cell[i]);
    if (escape == '\0') continue;
    line.append(cell, begin, i - begin);
    line += {'\\', escape};
    begin = i + 1;
  }
  line.append(cell, begin, cell.npos);
}

void append_in_quotes(std::string_view cell, std::string& line) {
  line += '"';
  for (const char c : cell) line.append(c == '"' ? 2 : 1, c);
  line += '"';
}

}  // namespace

void append_cell(std::string_view cell, bool is_first, CellForm form, std::string& line) {
  if (!is_first) line += form == CellForm::commas ? ',' : '\t';
  if (form == CellForm::tabs) {
    append_escaped(cell, line);
  } else if (form == CellForm::commas && cell.find_first_of(",\"\n\r") != std::string_view::npos) {
    append_in_quotes(cell, line);
  } else {
    line += cell;
  }
}

}  // namespace cli
