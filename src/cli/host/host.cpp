#include "host/host.h"

#include <string>

#include <qo_html/qo_html_host.h>

namespace {

thread_local std::size_t tag_count = 0;

}  // namespace

// The tool has no use for the counters of live nodes.
void qo_object_ref_increment(std::string /*tag*/) {}
void qo_object_ref_decrement(std::string /*tag*/) {}

// The parser goes on after a failed check, and so does the tool: markup that is merely odd is no
// error.
void qo_assertion_faild(bool /*condition*/, std::string condition_text, std::string /*message*/,
                        std::string /*file*/, int /*line*/) {
  if (condition_text == "tagName.length()") ++tag_count;
}

std::size_t cli::tags_met() {
  return tag_count;
}
