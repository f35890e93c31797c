#include <qo_page/template/block_stack.h>

#include <algorithm>

namespace qo {

using Kind = CodeStep::Kind;

void BlockStack::add(const CodeStep& step, std::size_t piece) {
  first_piece_ = std::min(first_piece_, piece);
  last_piece_ = piece;
  switch (step.kind) {
    case Kind::open:
      ++counts_[step.name];
      ++opened_[step.name];
      if (step.by_end) ++by_end_;
      break;
    case Kind::middle:
      if (open_.empty()) return;
      break;
    case Kind::close:
      ++closed_[step.name];
      return close(step, piece);
  }
  open_.push_back({step, piece});
}

void BlockStack::finish() {
  for (const Half& entry : open_) {
    if (entry.step.kind == Kind::open) unclosed_.push_back(entry);
  }
  open_.clear();
}

bool BlockStack::is_closed_by(const CodeStep& open, std::string_view name) {
  return open.kind == Kind::open && (name == any_end ? open.by_end : open.name == name);
}

bool BlockStack::is_open(std::string_view name) const {
  return name == any_end ? by_end_ > 0 : count_in(counts_, name) > 0;
}

bool BlockStack::has_opened(std::string_view name) const {
  return name == any_end ? !blocks_.empty() : count_in(opened_, name) > 0;
}

void BlockStack::drop(const Half& open) {
  --counts_[open.step.name];
  if (open.step.by_end) --by_end_;
}

// What was opened after the block began, and not closed, is no block; the middles that are left
// are its own.
void BlockStack::close(const CodeStep& step, std::size_t piece) {
  if (!is_open(step.name)) {
    unopened_.push_back({step, piece});
    return;
  }
  CodeBlock block{{piece}, false, false};
  bool is_begun = false;
  while (!is_begun) {
    const Half entry = open_.back();
    open_.pop_back();
    const bool is_middle = entry.step.kind == Kind::middle;
    is_begun = is_closed_by(entry.step, step.name);
    if (!is_middle) drop(entry);
    if (!is_middle && !is_begun) {
      unclosed_.push_back(entry);
      continue;
    }
    block.has_default = block.has_default || entry.step.is_default;
    block.is_loop = entry.step.is_loop;
    if (block.pieces.back() != entry.piece) block.pieces.push_back(entry.piece);
  }
  if (block.pieces.size() == 1) return;
  std::reverse(block.pieces.begin(), block.pieces.end());
  blocks_.push_back(std::move(block));
}

}  // namespace qo
