#include <qo_page/edits/seam_check.h>

#include <iterator>
#include <string>

#include <qo_page/decode.h>
#include <qo_page/text/node_text.h>
#include <qo_page/tokenizer/tokenizer.h>
#include <qo_page/tree/content_model.h>

namespace qo {

namespace {

[[noreturn]] void fail(const std::string& what, const Seam& seam) {
  throw Error("what is on both sides of the edit would together be read as " + what,
              seam.old_offset);
}

// Some engines take what follows a backslash for text.
bool is_escaped(std::string_view source, std::size_t offset) {
  return offset > 0 && source[offset - 1] == '\\' && source.substr(offset, 2) == "{{";
}

// The first seam within a stretch; `last` when there is none. The next stretch comes after it.
template <class Iterator>
Iterator seam_within(std::size_t begin, std::size_t end, Iterator& seam, Iterator last) {
  while (seam != last && seam->offset <= begin) ++seam;
  return seam != last && seam->offset < end ? seam : last;
}

}  // namespace

SeamCheck::SeamCheck(const Tree& tree, std::string_view old_source, const std::vector<Seam>& seams)
    : tree_(tree),
      source_(tree.source),
      old_source_(old_source),
      code_(source_, *tree.dialect),
      code_after_(source_, *tree.dialect),
      old_code_(old_source, *tree.dialect),
      next_(seams.begin()),
      end_(seams.end()) {}

// The seams in front of `end` that have not been looked at; what begins there comes next.
SeamCheck::Iterator SeamCheck::take_until(std::size_t end) {
  const Iterator first = next_;
  while (next_ != end_ && next_->offset < end) ++next_;
  return first;
}

void SeamCheck::tag(Range tag) {
  take_until(tag.begin);
  Iterator seam = take_until(tag.end);
  const Iterator within = seam_within(tag.begin, tag.end, seam, next_);
  if (within != next_) fail("a tag", *within);
}

void SeamCheck::stray_tags(Range tags) {
  take_until(tags.begin);
  if (next_ == end_ || next_->offset >= tags.end) return;
  const std::string_view source = source_.substr(0, tags.end);
  Tokenizer tokenizer(source, *tree_.dialect);
  tokenizer.begin_at(tags.begin);
  for (Token token{}; tokenizer.next(token);) tag(token.extent);
}

void SeamCheck::text(Range text, NodeIndex holder) {
  take_until(text.begin);
  const Iterator first = take_until(text.end);
  if (first == next_) return;
  line_break(holder, first, next_);
  const ContentModel model = content_model(tree_[holder]);
  if (model != ContentModel::rawtext) references(text, first, next_);
  if (model != ContentModel::data) return;
  code(text, first, next_);
  for (Iterator seam = first; seam != next_; ++seam) {
    if (!is_followed_at_once(seam)) code_after(*seam);
  }
}

// Whether another change begins where this one ends: then what comes after it is not what was
// there.
bool SeamCheck::is_followed_at_once(Iterator seam) const {
  return std::next(seam) != end_ && std::next(seam)->offset == seam->offset;
}

// A line break that comes to the start of a content was read where it was before, and would be
// dropped.
void SeamCheck::line_break(NodeIndex holder, Iterator seam, Iterator last) const {
  if (!drops_line_break(tree_[holder])) return;
  for (; seam != last && seam->offset <= tree_[holder].content_begin; ++seam) {
    if (!seam->is_end || line_break_length(source_.substr(seam->offset)) == 0) continue;
    throw Error("the line break after the edit would no longer be read", seam->old_offset);
  }
}

void SeamCheck::code(Range text, Iterator seam, Iterator last) {
  for (std::size_t at = code_.next_start(text.begin); at < text.end && seam != last;) {
    const std::size_t end = code_.end_of(at, CodeScanner::Place::text);
    const Iterator within = seam_within(at, end, seam, last);
    if (end != 0 && within != last) fail("template code", *within);
    at = code_.next_start(end == 0 ? at + 1 : end);
  }
}

void SeamCheck::references(Range text, Iterator seam, Iterator last) const {
  const std::string_view source = source_.substr(0, text.end);
  for (std::size_t at = source.find('&', text.begin);
       at != std::string_view::npos && seam != last;) {
    const std::size_t length = reference_length(source, at, DecodeMode::text);
    const Iterator within = seam_within(at, at + length, seam, last);
    if (within != last) fail("a character reference", *within);
    at = source.find('&', at + 1);
  }
}

void SeamCheck::code_after(const Seam& seam) {
  if (!seam.is_end || !code_after_.may_begin(source_[seam.offset])) return;
  if (is_escaped(source_, seam.offset) != is_escaped(old_source_, seam.old_offset)) {
    throw Error("the edit would change whether a backslash is in front of template code",
                seam.old_offset);
  }
  const std::size_t end = code_after_.end_of(seam.offset, CodeScanner::Place::text);
  const std::size_t old_end = old_code_.end_of(seam.old_offset, CodeScanner::Place::text);
  const std::size_t length = end == 0 ? 0 : end - seam.offset;
  const std::size_t old_length = old_end == 0 ? 0 : old_end - seam.old_offset;
  if (length == old_length) return;
  throw Error("the edit would change how the template code beside it is read", seam.old_offset);
}

}  // namespace qo
