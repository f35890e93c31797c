// A host that links the library, with the ready-made services.

#include <iostream>

#include <qo_html/qo_html.h>

int main() {
  _qo_html* document = nullptr;
  if (!parseHtml(document, "<ul><li>one</li><li>two</li></ul>", "", false, false)) return 1;
  qo_html_query items(document);
  items.find("ul > li").each([](unsigned long i, _qo_html* item) {
    item->set_attribute("id", "item" + std::to_string(i));
    return true;
  });
  items.get(1)->add_class("last");
  std::cout << document->outerHTML() << std::endl;
  delete document;
}
