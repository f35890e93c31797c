#include <qo_page/template/plain_sections.h>

#include <qo_page/base/words.h>
#include <qo_page/template/code_steps.h>

namespace qo {

namespace {

std::string_view word_of(std::string_view code) {
  return first_word(without_leading(code, "{~-$<%+?@*: \t\r\n"));
}

}  // namespace

void PlainSections::add(std::string_view code, CodePiece piece) {
  const std::string_view word = word_of(code);
  if (!word.empty()) by_name_[word].push_back(piece);
}

std::optional<CodePiece> PlainSections::take(std::string_view name) {
  const auto found = by_name_.find(name);
  if (found == by_name_.end() || found->second.empty()) return std::nullopt;
  const CodePiece piece = found->second.back();
  found->second.pop_back();
  return piece;
}

std::string_view plain_end(std::string_view code) {
  const std::string_view word = word_of(code);
  if (!begins_with(word, any_end)) return {};
  const std::string_view name = without_leading(word.substr(any_end.size()), "_");
  const bool is_lower = !name.empty() && name[0] == lower(name[0]);
  return is_lower ? name : std::string_view();
}

}  // namespace qo
