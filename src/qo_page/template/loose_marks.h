// Marks of template languages whose code is plain text to the reader: {if}, @if, #if, <#if>,
// [% IF %], <!-- IF -->.

#ifndef QO_PAGE_TEMPLATE_LOOSE_MARKS_H
#define QO_PAGE_TEMPLATE_LOOSE_MARKS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <qo_page/base/finder.h>
#include <qo_page/template/code_steps.h>

namespace qo {

// What a mark looks like; the blocks of one family do not see those of another.
enum class MarkFamily { braces, at_sign, hash, brackets, tags, comments };
constexpr std::size_t mark_families = 6;

struct LooseMark {
  MarkFamily family;
  std::size_t end;  // as far as it is shown
  std::size_t word_end;
  std::size_t next;  // where the next one may begin
  std::vector<CodeStep> steps;
};

// A family counts only in a source that has one of its ends.
class LooseMarks {
 public:
  explicit LooseMarks(std::string_view source);

  // The characters that marks begin with.
  const std::string& starts() const { return starts_; }

  // The mark at `at`, without steps when there is none that counts. Calls come in the order of the
  // source.
  LooseMark at(std::size_t at);

 private:
  bool has_end_in_braces() const;
  bool has_placeholder() const;
  std::size_t word_end(std::size_t at) const;
  std::size_t end_to_show(std::size_t at) const;

  void in_braces(std::string_view rest, LooseMark& mark) const;
  void at_sign(std::size_t at, LooseMark& mark) const;
  void hash(std::size_t at, LooseMark& mark) const;
  void brackets(std::size_t at, LooseMark& mark);
  void tag(std::string_view rest, LooseMark& mark) const;
  void comment(std::string_view rest, LooseMark& mark) const;

  std::string_view source_;
  std::string starts_;
  bool has_capitals_ = false;  // <!-- IF x --> is more than a note
  Finder bracket_begin_{"[%"}, bracket_end_{"%]"};
};

}  // namespace qo

#endif
