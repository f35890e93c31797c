// Carries out a substitution on a text as it is written.

#ifndef QO_PAGE_EDITS_SUBSTITUTER_H
#define QO_PAGE_EDITS_SUBSTITUTER_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <qo_page/base/pattern.h>
#include <qo_page/substitution.h>
#include <qo_page/text/decoded_text.h>

namespace qo {

// A replacement is literal texts with groups after them.
struct ReplacementPart {
  std::string literal;
  std::size_t group;  // no_group: the last part
};

constexpr std::size_t no_group = SIZE_MAX;

struct SubstitutionProgram {
  Pattern pattern;
  std::string replacement_text;  // as given
  std::vector<ReplacementPart> replacement;

  SubstitutionProgram(const std::string& expression, const std::string& text);

  // What takes the place of a match in the text.
  std::string replacement_of(const PatternMatch& match, std::string_view text) const;
};

// A stretch of a text, and what takes its place.
struct Splice {
  std::size_t begin, end;
  std::string text;
};

class Substituter {
 public:
  // All of them must outlive the object. `place` is the offset of errors.
  Substituter(const Substitution& substitution, PatternBudget& budget, std::size_t place)
      : program_(*substitution.program_), budget_(budget), place_(place) {}

  // The expression is matched with the decoded text, and what no match holds stays as it is
  // written. A match within template code does not count. Throws Error when the result would not be
  // exactly what was asked, since code or a reference would be cut, or when the expression takes
  // too many steps.
  std::vector<Splice> splices(const WrittenText& written) const;

  // The same by markup, with the groups as they are written.
  std::vector<Splice> markup_splices(const WrittenText& written) const;

 private:
  std::vector<PatternMatch> find_matches(const std::string& text) const;

  // The matches in the decoded text, and what is to be there: what `replacement` gives for each.
  template <class Replacement>
  std::vector<Splice> find_changes(const DecodedText& decoded, const Dialect& dialect,
                                   Replacement replacement) const;

  std::size_t written_offset(const DecodedText& decoded, std::size_t offset) const;

  const SubstitutionProgram& program_;
  PatternBudget& budget_;
  std::size_t place_;
};

// The text with the splices made.
std::string spliced(std::string_view text, const std::vector<Splice>& splices);

}  // namespace qo

#endif
