#include <qo_page/template/code_blocks.h>

#include <algorithm>
#include <string>

#include <qo_page/template/template_code.h>

namespace qo {

namespace {

using Step = CodeStep::Kind;

}  // namespace

CodeBlocks::CodeBlocks(std::string_view source) {
  Reading reading;
  read(source, reading);
  for (std::size_t kind = 0; kind < kinds; ++kind) {
    BlockStack& stack = reading.stacks[kind];
    stack.finish();
    for (const CodeBlock& block : stack.blocks()) {
      for (std::size_t i = 1; i < block.pieces.size(); ++i) {
        links_[kind].push_back({block.pieces[i - 1], block.pieces[i]});
        cuts_.add(pieces_[block.pieces[i - 1]], pieces_[block.pieces[i]]);
      }
    }
    set_around(kind);
    add_lone(kind, stack);
    blocks_.insert(blocks_.end(), stack.blocks().begin(), stack.blocks().end());
  }
  cuts_.finish();
}

void CodeBlocks::read(std::string_view source, Reading& reading) {
  CodeScanner scanner(source, true);
  LooseMarks marks(source);
  const std::string starts = marks.starts() + "{<";
  for (std::size_t i = 0; (i = source.find_first_of(starts, i)) != std::string_view::npos;) {
    const auto place = source[i] == '{' ? CodeScanner::Place::tag : CodeScanner::Place::text;
    const std::size_t end = scanner.end_of(i, place);
    if (end != 0) {
      read_code(source.substr(i, end - i), {i, end}, reading);
      i = end;
      continue;
    }
    const LooseMark mark = marks.at(i);
    add(loose + static_cast<std::size_t>(mark.family), mark.steps, {i, mark.end}, reading);
    i = mark.next;
  }
}

void CodeBlocks::read_code(std::string_view code, CodePiece piece, Reading& reading) {
  if (code[0] == '<') return add(angle, steps_of(code), piece, reading);
  if (code[1] != '{') return add(percent, steps_of(code), piece, reading);
  const std::vector<CodeStep> steps = steps_of(code);
  if (steps.empty() && plain_end(code).empty()) return reading.sections.add(code, piece);
  const bool is_end = steps.empty() || (steps[0].kind == Step::close && steps[0].is_sure);
  if (!is_end) return add(braces, steps, piece, reading);
  const std::string_view name = steps.empty() ? plain_end(code) : steps[0].name;
  if (reading.stacks[braces].is_open(name)) {
    return add(braces, {{Step::close, name}}, piece, reading);
  }
  if (const std::optional<CodePiece> begin = reading.sections.take(name)) {
    return cuts_.add(*begin, piece);
  }
  add(braces, steps, piece, reading);
}

void CodeBlocks::add(std::size_t kind, const std::vector<CodeStep>& steps, CodePiece piece,
                     Reading& reading) {
  for (const CodeStep& step : steps) reading.stacks[kind].add(step, pieces_.size());
  if (!steps.empty()) pieces_.push_back(piece);
}

// What has no other half although it must have one: the reader has not understood the block that
// it is a part of. In prose, the same marks stand for themselves.
void CodeBlocks::add_lone(std::size_t kind, const BlockStack& stack) {
  half_count_ += stack.unclosed().size() + stack.unopened().size();
  std::size_t first_unclosed = none;
  for (const BlockStack::Half& half : stack.unclosed()) {
    if (half.step.is_sure) first_unclosed = std::min(first_unclosed, half.piece);
  }
  for (const BlockStack::Half& half : stack.unopened()) {
    const bool is_lone = kind == angle   ? true
                         : kind >= loose ? stack.has_opened(half.step.name)
                                         : first_unclosed < half.piece;
    if (half.step.is_sure && is_lone) cuts_.add_lone(pieces_[half.piece]);
  }
  for (const BlockStack::Half& half : stack.unclosed()) {
    const bool is_lone =
        kind == angle ? !half.step.by_end : kind == braces && stack.has_closed(half.step.name);
    if (half.step.is_sure && is_lone) cuts_.add_lone(pieces_[half.piece]);
  }
}

// Links of one kind lie within each other or beside each other: they come from a stack.
void CodeBlocks::set_around(std::size_t kind) {
  Links& links = links_[kind];
  if (links.empty()) return;
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

std::optional<CodePiece> CodeBlocks::branch_at(std::size_t offset, std::size_t from) const {
  const auto after = std::lower_bound(
      pieces_.begin(), pieces_.end(), offset,
      [](const CodePiece& piece, std::size_t wanted) { return piece.begin < wanted; });
  const auto count = static_cast<std::size_t>(after - pieces_.begin());
  for (std::size_t kind = 0; kind < kinds; ++kind) {
    const std::size_t link = around_[kind].empty() ? none : around_[kind][count];
    if (link == none) continue;
    const CodePiece& begin = pieces_[links_[kind][link].first];
    if (begin.begin >= from) return begin;
  }
  return std::nullopt;
}

}  // namespace qo
