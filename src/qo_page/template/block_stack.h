// Joins the steps of code to blocks.

#ifndef QO_PAGE_TEMPLATE_BLOCK_STACK_H
#define QO_PAGE_TEMPLATE_BLOCK_STACK_H

#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <qo_page/template/code_steps.h>

namespace qo {

struct CodeBlock {
  std::vector<std::size_t> pieces;  // that begin it, divide it and end it, in order
  bool is_loop;
  bool has_default;  // one of its branches is always taken
};

// The blocks of one kind of brackets.
class BlockStack {
 public:
  // A step that has no other half.
  struct Half {
    CodeStep step;
    std::size_t piece;
  };

  // Steps come in the order of the source.
  void add(const CodeStep& step, std::size_t piece);

  // To be called once, after the last step.
  void finish();

  const std::vector<CodeBlock>& blocks() const { return blocks_; }
  const std::vector<Half>& unclosed() const { return unclosed_; }
  const std::vector<Half>& unopened() const { return unopened_; }

  // Whether there are other pieces after, or in front of, one.
  bool has_after(std::size_t piece) const { return piece < last_piece_; }
  bool has_before(std::size_t piece) const { return piece > first_piece_; }

  // Whether a block that the name closes is open now, was ever opened, or was ever closed.
  bool is_open(std::string_view name) const;
  bool has_opened(std::string_view name) const;
  bool has_closed(std::string_view name) const { return count_in(closed_, name) > 0; }

 private:
  using Counts = std::unordered_map<std::string_view, std::size_t>;

  static std::size_t count_in(const Counts& counts, std::string_view name) {
    const auto found = counts.find(name);
    return found == counts.end() ? 0 : found->second;
  }

  static bool is_closed_by(const CodeStep& open, std::string_view name);
  void close(const CodeStep& step, std::size_t piece);
  void drop(const Half& open);

  std::vector<CodeBlock> blocks_;
  std::size_t first_piece_ = static_cast<std::size_t>(-1);
  std::size_t last_piece_ = 0;
  std::vector<Half> open_;
  std::vector<Half> unclosed_, unopened_;
  Counts counts_;           // of open blocks, by name
  Counts opened_, closed_;  // by name
  std::size_t by_end_ = 0;  // open blocks that "end" closes
};

}  // namespace qo

#endif
