// Fills a template in: texts by id, and a row of the table for each item.
// usage: edit_template TEMPLATE

#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>

#include <qo_html/qo_html.h>

namespace {

struct Item {
  const char* name;
  const char* price;
};

constexpr Item items[] = {{"Tea", "3.20"}, {"Bread &amp; butter", "4.50"}};

// The first match; the template has to have one.
_qo_html* find(_qo_html* below, const std::string& selector) {
  _qo_html* const found = qo_html_query(below).find(selector).get(0);
  if (found == nullptr) throw std::runtime_error("the template has no " + selector);
  return found;
}

// A new node with the row's markup, put in front of the row.
_qo_html* insert_copy_before(_qo_html* row) {
  const std::unique_ptr<_qo_html> holder(qo_html_element_new("holder"));
  holder->set_html(row->outerHTML());
  _qo_html* const copy = holder->get_child_at(0);
  copy->detach();
  row->insert_before(copy, row);
  return copy;
}

void fill_in(_qo_html* page) {
  find(page, "#number")->set_text("Invoice 17");
  find(page, "#total")->set_text("7.70");
  _qo_html* const row = find(page, "tr.item");
  for (const Item& item : items) {
    _qo_html* const copy = insert_copy_before(row);
    find(copy, ".name")->set_text(item.name);
    find(copy, ".price")->set_text(item.price);
  }
  row->detach();
  delete row;
}

}  // namespace

int main(int argc, char** argv) {
  std::ifstream file(argc == 2 ? argv[1] : "");
  std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  _qo_html* parsed = nullptr;
  if (text.empty() || !parseHtml(parsed, std::move(text), argv[1], false, false)) {
    std::cerr << "usage: edit_template TEMPLATE" << std::endl;
    return 2;
  }
  const std::unique_ptr<_qo_html> page(parsed);
  try {
    fill_in(page.get());
  } catch (const std::runtime_error& error) {
    std::cerr << error.what() << std::endl;
    return 1;
  }
  std::cout << page->outerHTML();
}
