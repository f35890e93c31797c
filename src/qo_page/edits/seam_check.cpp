#include <qo_page/edits/seam_check.h>

#include <string>

#include <qo_page/decode.h>
#include <qo_page/page.h>
#include <qo_page/text/node_text.h>
#include <qo_page/tree/reading.h>

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

SeamCheck::SeamCheck(std::string_view source, std::string_view old_source, bool templates,
                     const std::vector<Seam>& seams)
    : source_(source),
      old_source_(old_source),
      code_(source, templates),
      code_after_(source, templates),
      old_code_(old_source, templates),
      next_(seams.begin()),
      end_(seams.end()) {}

void SeamCheck::token(const Token& token, const Node& holder) {
  while (next_ != end_ && next_->offset < token.extent.begin) ++next_;
  const Iterator first = next_;
  while (next_ != end_ && next_->offset < token.extent.end) ++next_;
  if (first == next_) return;
  const bool is_tag = token.kind == TokenKind::start_tag || token.kind == TokenKind::end_tag;
  const bool is_cut_off_tag =
      token.kind == TokenKind::text && token.is_cut_off && reading_of(holder) == Reading::markup;
  if (is_tag || is_cut_off_tag) {
    Iterator seam = first;
    const Iterator within = seam_within(token.extent.begin, token.extent.end, seam, next_);
    if (within != next_) fail("a tag", *within);
  } else if (token.kind == TokenKind::text) {
    text(token, holder, first, next_);
  }
}

void SeamCheck::text(const Token& token, const Node& holder, Iterator first, Iterator last) {
  line_break(holder, first, last);
  const Reading reading = reading_of(holder);
  if (reading != Reading::literal) references(token.extent, first, last);
  if (reading != Reading::markup) return;
  code(token.extent, first, last);
  for (Iterator seam = first; seam != last; ++seam) code_after(*seam);
}

// What is dropped at the start of a content was read where it was before.
void SeamCheck::line_break(const Node& holder, Iterator seam, Iterator last) const {
  if (!drops_line_break(holder)) return;
  for (; seam != last && seam->offset <= holder.extent.content_begin; ++seam) {
    if (!seam->is_end || line_break_length(source_.substr(seam->offset)) == 0) continue;
    throw Error("the line break after the edit would no longer be read", seam->old_offset);
  }
}

void SeamCheck::code(Range text, Iterator seam, Iterator last) {
  for (std::size_t at = code_.next_brace(text.begin); at < text.end && seam != last;) {
    const std::size_t end = code_.end_of(at, CodeScanner::Place::text);
    const Iterator within = seam_within(at, end, seam, last);
    if (end != 0 && within != last) fail("template code", *within);
    at = code_.next_brace(end == 0 ? at + 1 : end);
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
  if (!seam.is_end || source_[seam.offset] != '{') return;
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
