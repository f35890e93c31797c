#include "io/cells.h"

namespace cli {

namespace {

void append_escaped(std::string_view cell, std::string& line) {
  for (const char c : cell) {
    switch (c) {
      case '\t':
        line += "\\t";
        break;
      case '\n':
        line += "\\n";
        break;
      case '\r':
        line += "\\r";
        break;
      case '\\':
        line += "\\\\";
        break;
      default:
        line += c;
    }
  }
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
