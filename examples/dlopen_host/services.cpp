// Services of the host's own: nodes are counted, and a failed check ends the process.

#include <cstdlib>
#include <iostream>

#include <qo_html/qo_html_host.h>

long live_nodes = 0;

void qo_object_ref_increment(std::string /*tag*/) {
  ++live_nodes;
}

void qo_object_ref_decrement(std::string /*tag*/) {
  --live_nodes;
}

void qo_assertion_faild(bool condition, std::string condition_text, std::string message,
                        std::string /*file*/, int /*line*/) {
  if (condition) return;
  std::cerr << condition_text << ": " << message << std::endl;
  std::abort();
}
