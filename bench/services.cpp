#include "services.h"

#include <qo_html/qo_html_host.h>

static std::size_t live = 0;

std::size_t live_nodes() {
  return live;
}

void qo_object_ref_increment(std::string) {
  ++live;
}
void qo_object_ref_decrement(std::string) {
  --live;
}
void qo_assertion_faild(bool, std::string, std::string, std::string, int) {}
