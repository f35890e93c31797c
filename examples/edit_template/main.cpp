// Fills a template in: texts by id, and a row of the table for each item. All else stays as it is.
// usage: edit_template TEMPLATE

#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include <qo_page/edits.h>
#include <qo_page/page.h>

namespace {

struct Item {
  const char* name;
  const char* price;
};

constexpr Item items[] = {{"Tea", "3.20"}, {"Bread & butter", "4.50"}};

using Kind = qo::Operation::Kind;

// The first match; the template has to have one.
qo::Node find(const qo::Page& page, const std::string& selector) {
  const qo::Node found = page.first(selector);
  if (!found) throw qo::Error("the template has no " + selector);
  return found;
}

// The template's own row, with the texts of an item.
std::string row_for(const qo::Page& row, const Item& item) {
  qo::Edits edits(row);
  edits.add(find(row, ".name"), {{Kind::set_text, "", item.name}});
  edits.add(find(row, ".price"), {{Kind::set_text, "", item.price}});
  return edits.apply().source;
}

std::string filled_in(const qo::Page& page) {
  const qo::Node row = find(page, "tr.item");
  std::string rows;
  for (const Item& item : items) rows += row_for(qo::Page(std::string(row.html())), item);

  qo::Edits edits(page);
  edits.add(find(page, "#number"), {{Kind::set_text, "", "Invoice 17"}});
  edits.add(find(page, "#total"), {{Kind::set_text, "", "7.70"}, {Kind::add_class, "", "sum"}});
  edits.add(row, {{Kind::replace, "", rows}});
  return edits.apply().source;
}

}  // namespace

int main(int argc, char** argv) {
  std::ifstream file(argc == 2 ? argv[1] : "");
  std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  if (text.empty()) {
    std::cerr << "usage: edit_template TEMPLATE" << std::endl;
    return 2;
  }
  try {
    std::cout << filled_in(qo::Page(std::move(text)));
  } catch (const qo::Error& error) {
    std::cerr << error.what() << std::endl;
    return 1;
  }
}
