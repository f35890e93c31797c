// A regular expression, and the bounds of what it may cost.

#ifndef QO_PAGE_BASE_PATTERN_H
#define QO_PAGE_BASE_PATTERN_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct pcre2_real_code_8;

namespace qo {

class PatternError : public std::runtime_error {
 public:
  PatternError(const std::string& message, std::size_t offset)
      : std::runtime_error(message), offset_(offset) {}
  std::size_t offset() const { return offset_; }

 private:
  std::size_t offset_;
};

// The steps that patterns may still take on a page, together.
struct PatternBudget {
  struct Exceeded {};  // thrown by find() when there are none left

  explicit PatternBudget(std::size_t text_size)
      : steps(50'000'000 + 100 * static_cast<std::int64_t>(text_size)) {}

  std::int64_t steps;
};

// Where a match, which is the first, and its groups are; npos for a group that took no part.
using PatternMatch = std::vector<std::pair<std::size_t, std::size_t>>;

// A Perl-compatible regular expression over UTF-8, whose letters and words are those of Unicode.
// Bytes that are not UTF-8 match nothing.
class Pattern {
 public:
  // Throws PatternError when the text is no such expression.
  explicit Pattern(std::string_view text);
  ~Pattern();
  Pattern(const Pattern&) = delete;
  Pattern& operator=(const Pattern&) = delete;

  // The offset at which it first matches, or npos. Throws PatternBudget::Exceeded.
  std::size_t find(std::string_view text, PatternBudget& budget) const;

  // All its matches that do not overlap, each with its groups. An empty match right after another
  // one does not count. Throws PatternBudget::Exceeded.
  std::vector<PatternMatch> find_all(std::string_view text, PatternBudget& budget) const;

  std::size_t group_count() const;  // without the whole match

  // The number of the group of that name; nothing when there is none.
  std::optional<std::size_t> group_named(const std::string& name) const;

 private:
  pcre2_real_code_8* code_;      // for UTF-8
  pcre2_real_code_8* any_code_;  // for any bytes: it looks at the whole text for each match
};

}  // namespace qo

#endif
