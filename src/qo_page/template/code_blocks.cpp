#include <qo_page/template/code_blocks.h>

#include <algorithm>
#include <string>

#include <qo_page/template/template_code.h>

namespace qo {

using Step = CodeStep::Kind;

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
    count_halves(kind, stack);
    blocks_.insert(blocks_.end(), stack.blocks().begin(), stack.blocks().end());
  }
  cuts_.finish();
}

void CodeBlocks::read(std::string_view source, Reading& reading) {
  CodeScanner scanner(source, html_dialect());
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
    read_cut_comment(source, i, reading);
    const LooseMark mark = marks.at(i);
    add(loose + static_cast<std::size_t>(mark.family), mark.steps, {i, mark.end, mark.word_end},
        reading);
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

// A comment that is none to the reader, since it has a part of the page in it.
void CodeBlocks::read_cut_comment(std::string_view source, std::size_t at, Reading& reading) {
  if (source.substr(at, 2) != "{#") return;
  const std::size_t end = reading.comment_end.find(source, at + 2);
  const bool is_closed =
      end != std::string_view::npos && reading.comment_begin.find(source, at + 2) > end;
  if (is_closed) cuts_.add({at, at + 2, at + 2}, {end, end + 2, end + 2});
}

void CodeBlocks::add(std::size_t kind, const std::vector<CodeStep>& steps, CodePiece piece,
                     Reading& reading) {
  for (const CodeStep& step : steps) reading.stacks[kind].add(step, pieces_.size());
  if (!steps.empty()) pieces_.push_back(piece);
}

// Whether an end without a beginning, or a beginning without an end, cannot be anything else.
bool CodeBlocks::is_half(std::size_t kind, const CodeStep& step, const BlockStack& stack) {
  if (!step.is_sure) return false;
  if (kind >= loose) {
    return step.kind == Step::close ? stack.has_opened(step.name) : stack.has_closed(step.name);
  }
  return step.kind == Step::close || kind != angle || !step.by_end;
}

void CodeBlocks::count_halves(std::size_t kind, const BlockStack& stack) {
  for (const std::vector<BlockStack::Half>* halves : {&stack.unclosed(), &stack.unopened()}) {
    unmatched_count_ += halves->size();
    half_count_ += static_cast<std::size_t>(std::count_if(
        halves->begin(), halves->end(),
        [&](const BlockStack::Half& half) { return is_half(kind, half.step, stack); }));
  }
}

// What has no other half although it must have one: the reader has not understood the block that
// it is a part of. In prose, the same marks stand for themselves.
void CodeBlocks::add_lone(std::size_t kind, const BlockStack& stack) {
  std::size_t first_unclosed = none;
  for (const BlockStack::Half& half : stack.unclosed()) {
    const bool is_opening = kind == percent || half.step.is_sure;
    if (is_opening) first_unclosed = std::min(first_unclosed, half.piece);
  }
  for (const BlockStack::Half& half : stack.unopened()) {
    const bool is_known =
        kind == angle ? stack.has_before(half.piece) : kind >= loose || first_unclosed < half.piece;
    if (is_known && is_half(kind, half.step, stack)) cuts_.add_lone(pieces_[half.piece]);
  }
  for (const BlockStack::Half& half : stack.unclosed()) {
    const bool is_known = kind == angle ? stack.has_after(half.piece)
                                        : kind == braces && stack.has_closed(half.step.name);
    if (is_known && is_half(kind, half.step, stack)) cuts_.add_lone(pieces_[half.piece]);
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
