// A host with services of its own.

#include <iostream>

#include <qo_html/qo_html.h>
#include <qo_html/qo_html_host.h>

static long live = 0;
static long checks = 0;

void qo_object_ref_increment(std::string) { ++live; }
void qo_object_ref_decrement(std::string) { --live; }
void qo_assertion_faild(bool, std::string, std::string, std::string, int) { ++checks; }

int main() {
  _qo_html* const p = qo_html_element_new("p");
  p->add_child(qo_html_text_node_new("text"));
  std::cout << p->outerHTML() << ' ' << live << ' ' << checks << ' ';
  delete p;
  std::cout << live << ' ' << QO_HTML_VERSION << std::endl;
}
