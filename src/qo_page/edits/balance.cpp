#include <qo_page/edits/balance.h>

#include <algorithm>

#include <qo_page/page.h>
#include <qo_page/template/code_blocks.h>

namespace qo {

namespace {

// Marks of blocks, in all languages. A change may share the first and the last of them with what
// was there.
bool may_have_block(std::string_view text) {
  return text.find_first_of("{}<%@#[") != std::string_view::npos;
}

std::size_t half_count(std::string_view text) {
  return CodeBlocks(text).half_count();
}

}  // namespace

void check_balance(const WrittenEdit& written, const Page& page) {
  if (!page.options().templates) return;
  const std::string_view after = written.source;
  const auto added = [after](const Change& change) {
    return after.substr(change.new_begin, change.new_end - change.new_begin);
  };
  const auto first =
      std::find_if(written.changes.begin(), written.changes.end(),
                   [&](const Change& change) { return may_have_block(added(change)); });
  if (first == written.changes.end() || half_count(after) <= half_count(page.source())) return;
  const auto half = std::find_if(first, written.changes.end(), [&](const Change& change) {
    return half_count(added(change)) > 0;
  });
  throw Error("the edit brings in half of a block of template code",
              (half == written.changes.end() ? first : half)->old_begin);
}

}  // namespace qo
