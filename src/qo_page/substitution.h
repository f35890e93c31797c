// A regular expression, and what takes the place of each of its matches.

#ifndef QO_PAGE_SUBSTITUTION_H
#define QO_PAGE_SUBSTITUTION_H

#include <memory>
#include <string>

#include <qo_page/qo_page_export.h>

namespace qo {

struct SubstitutionProgram;

// Read once; it never changes, and a copy shares what was read.
class QO_PAGE_API Substitution {
 public:
  // `expression` is Perl-compatible. In `replacement`, "$0" is the whole match, "$1" or "${1}" a
  // group by its number, "${name}" one by its name, and "$$" a "$". Throws Error when either cannot
  // be read; the offset is one into the text that is wrong.
  Substitution(const std::string& expression, const std::string& replacement);

  // As it was given.
  const std::string& replacement() const;

 private:
  friend class Substituter;
  std::shared_ptr<const SubstitutionProgram> program_;
};

}  // namespace qo

#endif
