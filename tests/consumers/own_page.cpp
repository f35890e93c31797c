// A program that uses the installed qo_page, with services of its own.

#include <iostream>

#include <qo_html/qo_html_host.h>
#include <qo_page/edits.h>
#include <qo_page/selector.h>

void qo_object_ref_increment(std::string) {}
void qo_object_ref_decrement(std::string) {}
void qo_assertion_faild(bool, std::string, std::string, std::string, int) {}

int main() {
  const qo::Page page("<p {{ x }}>a<p>b");
  qo::Edits edits(page);
  edits.add(page.select(qo::Selector("p:last-child")), {{qo::Operation::Kind::add_class, "", "k"}});
  try {
    qo::Selector("p:nothing");
  } catch (const qo::SelectorError& error) {
    std::cout << edits.apply().source << " " << error.offset() << std::endl;
  }
}
