#include <qo_page/edits/balance.h>

#include <algorithm>
#include <vector>

#include <qo_page/template/code_blocks.h>

namespace qo {

namespace {

// Marks of blocks, in all languages. A change may share the first and the last of them with what
// was there.
bool may_have_block(std::string_view text) {
  return text.find_first_of("{}<%@#[") != std::string_view::npos;
}

// Changes, of which some may bring in, or touch, parts of blocks.
using Changes = std::vector<Change>;

// The first change that, with some characters on both sides, may have to do with a block.
Changes::const_iterator find_change(const WrittenEdit& written, std::string_view after,
                                    std::size_t around) {
  return std::find_if(written.changes.begin(), written.changes.end(), [&](const Change& change) {
    const std::size_t begin = change.new_begin - std::min(around, change.new_begin);
    return may_have_block(after.substr(begin, change.new_end + around - begin));
  });
}

}  // namespace

void check_balance(const WrittenEdit& written, const Tree& old_tree, const Tree& new_tree) {
  if (!old_tree.dialect->has_code()) return;
  const auto beside = find_change(written, new_tree.source, 1);
  if (beside == written.changes.end()) return;
  const CodeBlocks before(old_tree.source);
  const CodeBlocks after(new_tree.source);
  const auto within = find_change(written, new_tree.source, 0);
  if (within != written.changes.end()) {
    if (after.half_count() <= before.half_count()) return;
    throw Error("the edit brings in half of a block of template code", within->old_begin);
  }
  if (after.unmatched_count() <= before.unmatched_count()) return;
  throw Error("the edit would change how the template code beside it is read", beside->old_begin);
}

}  // namespace qo
