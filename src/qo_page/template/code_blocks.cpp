#include <qo_page/template/code_blocks.h>

#include <algorithm>
#include <iterator>
#include <unordered_map>

#include <qo_page/template/template_code.h>

namespace qo {

namespace {

// The blocks of one kind of brackets that are open.
class BlockStack {
 public:
  explicit BlockStack(std::vector<CodeBlock>& blocks) : blocks_(blocks) {}

  void add(const CodeStep& step, std::size_t piece) {
    switch (step.kind) {
      case CodeStep::Kind::open:
        ++count_of(step);
        if (step.by_end) ++by_end_;
        break;
      case CodeStep::Kind::middle:
        if (open_.empty()) return;
        break;
      case CodeStep::Kind::close:
        return close(step.name, piece);
    }
    open_.push_back({step, piece});
  }

 private:
  struct Entry {
    CodeStep step;
    std::size_t piece;
  };

  std::size_t& count_of(const CodeStep& step) { return counts_[step.name]; }

  static bool is_closed_by(const CodeStep& open, std::string_view name) {
    return open.kind == CodeStep::Kind::open && (name == any_end ? open.by_end : open.name == name);
  }

  // What was opened after the block began, and not closed, is no block; the middles that are left
  // are its own.
  void close(std::string_view name, std::size_t piece) {
    const auto count = counts_.find(name);
    const bool is_open =
        name == any_end ? by_end_ > 0 : count != counts_.end() && count->second > 0;
    if (!is_open) return;
    CodeBlock block{{piece}, false, false};
    bool is_begun = false;
    while (!is_begun) {
      const Entry entry = open_.back();
      open_.pop_back();
      const bool is_middle = entry.step.kind == CodeStep::Kind::middle;
      is_begun = is_closed_by(entry.step, name);
      if (!is_middle) {
        --count_of(entry.step);
        if (entry.step.by_end) --by_end_;
      }
      if (!is_middle && !is_begun) continue;
      block.has_default = block.has_default || entry.step.is_default;
      block.is_loop = entry.step.is_loop;
      if (block.pieces.back() != entry.piece) block.pieces.push_back(entry.piece);
    }
    if (block.pieces.size() == 1) return;
    std::reverse(block.pieces.begin(), block.pieces.end());
    blocks_.push_back(std::move(block));
  }

  std::vector<CodeBlock>& blocks_;
  std::vector<Entry> open_;
  std::unordered_map<std::string_view, std::size_t> counts_;  // of open blocks, by name
  std::size_t by_end_ = 0;                                    // those that "end" closes
};

std::size_t kind_of(std::string_view code) {
  return code[0] == '<' ? 0 : code[1] == '{' ? 1 : 2;
}

}  // namespace

CodeBlocks::CodeBlocks(std::string_view source) {
  std::array<std::vector<CodeBlock>, kinds> blocks;
  BlockStack stacks[kinds] = {BlockStack(blocks[0]), BlockStack(blocks[1]), BlockStack(blocks[2])};
  CodeScanner scanner(source, true);
  for (std::size_t i = 0; (i = source.find_first_of("<{", i)) != std::string_view::npos;) {
    const auto place = source[i] == '<' ? CodeScanner::Place::text : CodeScanner::Place::tag;
    const std::size_t end = scanner.end_of(i, place);
    if (end == 0) {
      ++i;
      continue;
    }
    const std::string_view code = source.substr(i, end - i);
    const std::vector<CodeStep> steps = steps_of(code);
    for (const CodeStep& step : steps) stacks[kind_of(code)].add(step, pieces_.size());
    if (!steps.empty()) pieces_.push_back({i, end});
    i = end;
  }
  for (std::size_t kind = 0; kind < kinds; ++kind) {
    set_around(kind, blocks[kind]);
    std::move(blocks[kind].begin(), blocks[kind].end(), std::back_inserter(blocks_));
  }
}

// Links of one kind lie within each other or beside each other: they come from a stack.
void CodeBlocks::set_around(std::size_t kind, const std::vector<CodeBlock>& blocks) {
  Links& links = links_[kind];
  for (const CodeBlock& block : blocks) {
    for (std::size_t i = 1; i < block.pieces.size(); ++i) {
      links.push_back({block.pieces[i - 1], block.pieces[i]});
    }
  }
  std::sort(links.begin(), links.end(), [](const Link& a, const Link& b) {
    return a.first != b.first ? a.first < b.first : a.second > b.second;
  });
  std::vector<std::size_t>& around = around_[kind];
  around.assign(pieces_.size() + 1, none);
  std::vector<std::size_t> open;
  std::size_t next = 0;
  for (std::size_t piece = 0; piece < pieces_.size(); ++piece) {
    while (!open.empty() && links[open.back()].second <= piece) open.pop_back();
    while (next < links.size() && links[next].first == piece) open.push_back(next++);
    around[piece + 1] = open.empty() ? none : open.back();
  }
}

std::size_t CodeBlocks::count_before(std::size_t offset) const {
  const auto found = std::lower_bound(
      pieces_.begin(), pieces_.end(), offset,
      [](const CodePiece& piece, std::size_t wanted) { return piece.begin < wanted; });
  return static_cast<std::size_t>(found - pieces_.begin());
}

// A range that begins and ends in the same branch cuts nothing. Otherwise the branch that it begins
// in ends within it, or the one that it ends in begins there.
std::optional<CodeBlocks::Cut> CodeBlocks::cut(std::size_t begin, std::size_t end) const {
  const std::size_t first = count_before(begin);
  const std::size_t last = count_before(end);
  for (std::size_t kind = 0; kind < kinds; ++kind) {
    const std::size_t from = around_[kind][first];
    const std::size_t to = around_[kind][last];
    if (from == to) continue;
    const Links& links = links_[kind];
    if (from != none && links[from].second < last) {
      return Cut{pieces_[links[from].second], pieces_[links[from].first]};
    }
    return Cut{pieces_[links[to].first], pieces_[links[to].second]};
  }
  return std::nullopt;
}

std::optional<CodePiece> CodeBlocks::branch_at(std::size_t offset) const {
  const std::size_t count = count_before(offset);
  for (std::size_t kind = 0; kind < kinds; ++kind) {
    const std::size_t link = around_[kind][count];
    if (link != none) return pieces_[links_[kind][link].first];
  }
  return std::nullopt;
}

}  // namespace qo
