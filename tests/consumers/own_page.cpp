// A program that uses the installed qo_page.

#include <iostream>

#include <qo_page/edits.h>
#include <qo_page/form_data.h>
#include <qo_page/selector.h>
#include <qo_page/tables.h>
#include <qo_page/version.h>

int main() {
  const qo::Page page("<p {{ x }}>a<p>b");
  qo::Edits edits(page);
  edits.add(page.select("p:last-child"), {{qo::Operation::Kind::add_class, "", "k"}});
  try {
    qo::Selector("p:nothing");
  } catch (const qo::SelectorError& error) {
    std::cout << edits.apply().source << " " << error.offset() << " " << QO_PAGE_VERSION << std::endl;
  }
}
