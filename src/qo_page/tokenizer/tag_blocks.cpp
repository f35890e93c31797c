#include <qo_page/tokenizer/tag_blocks.h>

#include <algorithm>

#include <qo_page/template/code_steps.h>

namespace qo {

void TagBlocks::add(std::string_view code, std::size_t offset) {
  for (const CodeStep& step : steps_of(code)) {
    if (step.kind == CodeStep::Kind::close) last_ends_[step.name] = offset;
  }
}

bool TagBlocks::has_end(std::string_view name, std::size_t offset) const {
  const auto end = last_ends_.find(name);
  return end != last_ends_.end() && end->second >= offset;
}

bool TagBlocks::ends_after(std::string_view opener, std::size_t offset) const {
  const std::vector<CodeStep> steps = steps_of(opener);
  return std::any_of(steps.begin(), steps.end(), [&](const CodeStep& step) {
    return step.kind == CodeStep::Kind::open &&
           (has_end(step.name, offset) || (step.by_end && has_end(any_end, offset)));
  });
}

}  // namespace qo
