#include <algorithm>
#include <set>

#include <qo_page/selector.h>
#include <qo_page/tables.h>

#include "commands/commands.h"
#include "io/cells.h"
#include "io/failure.h"
#include "io/json_text.h"
#include "io/text.h"
#include "pages/read_page.h"
#include "session.h"

namespace cli {

namespace {

// The tables among the matches and those within other matches, each once, in their order.
std::vector<qo::Node> find_tables(const qo::Page& page, const qo::Selector& selector) {
  static const qo::Selector all("table");
  const std::vector<qo::Node> matches = page.select(selector);
  std::vector<qo::Node> found;
  std::size_t container_end = 0;
  auto match = matches.begin();
  for (const qo::Node table : page.select(all)) {
    const std::size_t begin = table.extent().begin;
    bool is_match = false;
    for (; match != matches.end() && match->extent().begin <= begin; ++match) {
      is_match = *match == table;
      if (!is_match) container_end = std::max(container_end, match->extent().end);
    }
    if (is_match || begin < container_end) found.push_back(table);
  }
  return found;
}

// The name of each column as a member of objects: the texts of its header cells, each once.
std::vector<std::string> column_names(const qo::Table& table) {
  std::vector<std::string> names;
  std::set<std::string> taken;
  for (std::size_t column = 0; column < table.columns(); ++column) {
    std::string name;
    const std::string* last = nullptr;
    for (std::size_t row = 0; row < table.header_rows(); ++row) {
      const std::string& text = table.text(row, column);
      if (text.empty() || (last != nullptr && *last == text)) continue;
      name += (name.empty() ? "" : " ") + text;
      last = &text;
    }
    if (name.empty()) name = "column " + std::to_string(column + 1);
    std::string unique = name;
    for (int i = 2; !taken.insert(unique).second; ++i) unique = name + " " + std::to_string(i);
    names.push_back(unique);
  }
  return names;
}

class TablePrinter {
 public:
  TablePrinter(const Options& options, const std::string& name, Output& out)
      : form_(options.csv ? CellForm::commas : CellForm::tabs), name_(name), out_(out) {}

  void print(const qo::Table& table) {
    for (std::size_t row = 0; row < table.rows(); ++row) {
      std::string line;
      if (!name_.empty() && form_ == CellForm::commas) append_cell(name_, true, form_, line);
      for (std::size_t column = 0; column < table.columns(); ++column) {
        append_cell(table.text(row, column), column == 0 && line.empty(), form_, line);
      }
      if (form_ == CellForm::tabs) print_name();
      print_line(line);
    }
  }

  void print_json(const qo::Table& table) {
    const std::vector<std::string> names = column_names(table);
    for (std::size_t row = table.header_rows(); row < table.rows(); ++row) {
      JsonLine object;
      JsonArray array;
      if (!name_.empty()) table.header_rows() > 0 ? object.add("file", name_) : array.add(name_);
      for (std::size_t column = 0; column < table.columns(); ++column) {
        const std::string& text = table.text(row, column);
        table.header_rows() > 0 ? object.add(names[column], text) : array.add(text);
      }
      print_line(table.header_rows() > 0 ? object.text() : array.text());
    }
  }

 private:
  void print_name() {
    if (name_.empty()) return;
    out_.paint("35", name_);
    out_.paint("36", ":");
  }

  void print_line(std::string_view line) {
    out_.write(line);
    out_.write("\n");
  }

  CellForm form_;
  const std::string& name_;
  Output& out_;
};

}  // namespace

int run_table(const Options& options) {
  if (options.csv && options.show) throw Failure("table: --csv and --json exclude each other");
  const qo::Selector selector(options.selector);
  Session session(options);
  return session.run([&](Input& input, Output& out) {
    const qo::Page page = read_page(input, options);
    std::vector<qo::Node> tables = find_tables(page, selector);
    if (options.first_only && tables.size() > 1) tables.resize(1);
    const std::string name = session.shows_names() ? printable(input.name) : std::string();
    TablePrinter printer(options, name, out);
    for (const qo::Node node : tables) {
      const qo::Table table(node);
      if (options.show) {
        printer.print_json(table);
      } else {
        if (node != tables.front()) out.write("\n");
        printer.print(table);
      }
    }
    return tables.empty() ? Found::nothing : Found::something;
  });
}

}  // namespace cli
