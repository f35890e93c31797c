#include <qo_page/substitution.h>

#include <algorithm>
#include <optional>

#include <qo_page/base/ascii.h>
#include <qo_page/edits/substituter.h>
#include <qo_page/page.h>

namespace qo {

namespace {

class ReplacementReader {
 public:
  ReplacementReader(const std::string& text, const Pattern& pattern)
      : text_(text), pattern_(pattern) {}

  std::vector<ReplacementPart> read() {
    std::vector<ReplacementPart> parts(1, {std::string(), no_group});
    while (i_ < text_.size()) {
      if (text_[i_] == '\\' && i_ + 1 < text_.size() && is_digit(text_[i_ + 1])) {
        fail("a group is written $1, not \\1", i_);
      } else if (text_[i_] != '$') {
        parts.back().literal += text_[i_++];
      } else if (text_.compare(i_, 2, "$$") == 0) {
        parts.back().literal += '$';
        i_ += 2;
      } else {
        parts.back().group = read_group();
        parts.push_back({std::string(), no_group});
      }
    }
    return parts;
  }

 private:
  std::size_t read_group() {
    const std::size_t begin = i_++;
    const bool braced = i_ < text_.size() && text_[i_] == '{';
    if (braced) ++i_;
    const std::size_t name_begin = i_;
    while (i_ < text_.size() && (is_digit(text_[i_]) || (braced && text_[i_] != '}'))) ++i_;
    const std::string name = text_.substr(name_begin, i_ - name_begin);
    if (braced && i_++ == text_.size()) fail("\"${\" has no \"}\"", begin);
    if (name.empty()) fail("after \"$\" comes a group, or \"$$\" for a \"$\" itself", begin);
    return number_of(name, begin);
  }

  std::size_t number_of(const std::string& name, std::size_t begin) const {
    if (!std::all_of(name.begin(), name.end(), is_digit)) {
      const std::optional<std::size_t> number = pattern_.group_named(name);
      if (!number) fail("the expression has no group \"" + name + "\"", begin);
      return *number;
    }
    const std::size_t number = name.size() > 6 ? no_group : std::stoul(name);
    if (number > pattern_.group_count()) fail("the expression has no group " + name, begin);
    return number;
  }

  [[noreturn]] static void fail(const std::string& message, std::size_t offset) {
    throw Error("the replacement: " + message, offset, Error::Place::pattern);
  }

  const std::string& text_;
  const Pattern& pattern_;
  std::size_t i_ = 0;
};

}  // namespace

Substitution::Substitution(const std::string& expression, const std::string& replacement) try
    : program_(std::make_shared<const SubstitutionProgram>(expression, replacement)) {
} catch (const PatternError& error) {
  throw Error(std::string("the expression: ") + error.what(), error.offset(),
              Error::Place::pattern);
}

const std::string& Substitution::replacement() const {
  return program_->replacement_text;
}

SubstitutionProgram::SubstitutionProgram(const std::string& expression, const std::string& text)
    : pattern(expression),
      replacement_text(text),
      replacement(ReplacementReader(text, pattern).read()) {}

std::string SubstitutionProgram::replacement_of(const PatternMatch& match,
                                                std::string_view text) const {
  std::string out;
  for (const ReplacementPart& part : replacement) {
    out += part.literal;
    if (part.group == no_group || match[part.group].first == std::string::npos) continue;
    const auto& [begin, end] = match[part.group];
    out += text.substr(begin, end - begin);
  }
  return out;
}

}  // namespace qo
