// The tables of docs/, which are run as tests.

#ifndef QO_HTML_TESTS_DOC_ROWS_H
#define QO_HTML_TESTS_DOC_ROWS_H

#include <string>
#include <utility>
#include <vector>

inline std::string unescaped(std::string text) {
  for (const auto& [from, to] : {std::pair("\\n", "\n"), std::pair("\\t", "\t")}) {
    for (std::size_t at; (at = text.find(from)) != text.npos;) text.replace(at, 2, to);
  }
  return text;
}

// Splits a row "| `input` | `tree` | remark |"; empty unless it is one.
inline std::vector<std::string> cells(const std::string& row) {
  std::vector<std::string> out;
  if (row.rfind("| `", 0) != 0) return out;
  for (std::size_t start = 2, end; (end = row.find(" |", start)) != row.npos; start = end + 3) {
    std::string cell = row.substr(start, end - start);
    if (cell.size() > 1 && cell.front() == '`' && cell.back() == '`') cell = cell.substr(1, cell.size() - 2);
    out.push_back(cell);
  }
  return out;
}

#endif
