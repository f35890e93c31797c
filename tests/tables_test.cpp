// Tables as grids of cells.

#include <qo_page/tables.h>

#include <random>

#include <gtest/gtest.h>

namespace {

// Rows with "|" between cells and "/" after each.
std::string grid(const std::string& source) {
  const qo::Page page(source);
  const qo::Table table(page.first("table"));
  std::string out = std::to_string(table.header_rows()) + ":";
  for (std::size_t row = 0; row < table.rows(); ++row) {
    for (std::size_t column = 0; column < table.columns(); ++column) out += table.text(row, column) + "|";
    out += "/";
  }
  return out;
}

TEST(Table, IsTheGridOfTheStandard) {
  struct {
    const char* source;
    const char* grid;
  } const cases[] = {
      {"<table>", "0:"},
      {"<table><tr><tr><td>a", "0:|/a|/"},
      {"<table><tr><th>a<th>b<tr><th>c<td>d</table>", "1:a|b|/c|d|/"},
      {"<table><tr><th>a<td>b</table>", "0:a|b|/"},
      {"<table><thead><tr><td>a<tr><td>b<tbody><tr><td>c</table>", "2:a|/b|/c|/"},
      {"<table><tfoot><tr><td>f<tbody><tr><td>a</table>", "0:a|/f|/"},
      {"<table><tr><td rowspan=2>a<td>b<tr><td>c<tr><td>d</table>", "0:a|b|/a|c|/d||/"},
      {"<table><tr><td colspan=2>a<td>b<tr><td>c</table>", "0:a|a|b|/c|||/"},
      {"<table><tr><td>a<td rowspan=3>b<tr><td colspan=3>c<tr><td>d</table>", "0:a|b||/c|b|c|/d|b||/"},
      {"<table><tr><td rowspan=0>a<td>b<tr><td>c<tbody><tr><td>d</table>", "0:a|b|/a|c|/d||/"},
      {"<table><tr><td rowspan=-1 colspan=' &#50;x'>a<td colspan=0>b", "0:a|a|b|/"},
      {"<table><td>a<td>b<tr><td>c</table>", "0:a|b|/c||/"},
      {"<table><caption>x<col><tr><td>a <p> b<table><tr><td>in</table> c</table>", "0:a b c|/"},
      {"<TABLE><form><TR><TD>a</form></TABLE>", "0:a|/"},
      {"<table>{% for x in y %}<tr><td>{{ x }}</td></tr>{% endfor %}</table>", "0:{{ x }}|/"},
  };
  for (const auto& test : cases) EXPECT_EQ(grid(test.source), test.grid) << test.source;
  EXPECT_THROW(grid("<table><tr><td rowspan=0 colspan=1000>" + std::string(80000, ' ').replace(0, 0, "a") +
                    [] {
                      std::string rows;
                      for (int i = 0; i < 20000; ++i) rows += "<tr><td>";
                      return rows;
                    }()),
               qo::Error);
}

// Node, its place and its spans.
std::string shown(const qo::Cell& cell) {
  std::string out = cell.node ? std::string(cell.node.html()) : "none";
  for (const std::size_t number : {cell.row, cell.column, cell.rows, cell.columns}) out += " " + std::to_string(number);
  return out;
}

TEST(Table, HasTheNodesOfItsCells) {
  const qo::Page page("<table><tr><td>a<td rowspan=3>b<tr><td colspan=3>c<tr><td rowspan=9>d</table>");
  const qo::Table table(page.first("table"));
  const struct {
    std::size_t row, column;
    const char* cell;
  } places[] = {{0, 0, "<td>a 0 0 1 1"},
                {0, 2, "none 0 2 1 1"},
                {1, 1, "<td rowspan=3>b 0 1 3 1"},  // which c would have, too
                {1, 2, "<td colspan=3>c 1 0 1 3"},
                {2, 0, "<td rowspan=9>d 2 0 1 1"}};
  for (const auto& place : places) EXPECT_EQ(shown(table.cell(place.row, place.column)), place.cell);
  for (const auto& [row, column] : {std::pair<std::size_t, std::size_t>(3, 0), {0, 3}, {SIZE_MAX, SIZE_MAX}}) {
    EXPECT_THROW(table.cell(row, column), qo::Error);
    EXPECT_THROW(table.text(row, column), qo::Error);
  }
  EXPECT_THROW(qo::Table{qo::Node()}, qo::Error);
}

// Each place of random grids is filled by the cell that says so, unless another one has it first.
TEST(Table, HasCellsThatFillTheirPlaces) {
  std::mt19937 random(7);
  const auto below = [&random](std::size_t most) { return random() % most; };
  for (int round = 0; round < 300; ++round) {
    std::string source = "<table>";
    for (std::size_t row = 0; row < 1 + below(5); ++row) {
      source += below(5) == 0 ? "<tbody><tr>" : "<tr>";
      for (std::size_t cell = below(4); cell > 0; --cell) {
        source += "<td rowspan=" + std::to_string(below(4)) + " colspan=" + std::to_string(below(4)) + ">x";
      }
    }
    const qo::Page page(source);
    const qo::Table table(page.first("table"));
    for (std::size_t row = 0; row < table.rows(); ++row) {
      for (std::size_t column = 0; column < table.columns(); ++column) {
        const qo::Cell cell = table.cell(row, column);
        EXPECT_TRUE(cell.row <= row && row < cell.row + cell.rows) << source;
        EXPECT_TRUE(cell.column <= column && column < cell.column + cell.columns) << source;
        EXPECT_EQ(table.cell(cell.row, cell.column).node, cell.node) << source;
        EXPECT_EQ(table.text(row, column), cell.node ? "x" : "") << source;
      }
    }
  }
}

}  // namespace
