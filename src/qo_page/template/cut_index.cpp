#include <qo_page/template/cut_index.h>

#include <algorithm>

namespace qo {

namespace {

constexpr std::size_t nowhere = static_cast<std::size_t>(-1);

}  // namespace

void CutIndex::add(const CodePiece& first, const CodePiece& second) {
  entries_.push_back({first, second});
  entries_.push_back({second, first});
}

void CutIndex::add_lone(const CodePiece& piece) {
  entries_.push_back({piece, {nowhere, nowhere}});
}

void CutIndex::finish() {
  std::stable_sort(entries_.begin(), entries_.end(),
                   [](const Entry& a, const Entry& b) { return a.piece.begin < b.piece.begin; });
  const std::size_t count = entries_.size();
  outermost_.resize(2 * count);
  for (std::size_t i = 0; i < count; ++i) outermost_[count + i] = {i, i};
  for (std::size_t i = count; i-- > 1;) {
    outermost_[i] = both(outermost_[2 * i], outermost_[2 * i + 1]);
  }
}

CutIndex::Outermost CutIndex::both(const Outermost& a, const Outermost& b) const {
  const auto partner = [this](std::size_t i) { return entries_[i].partner.begin; };
  return {partner(b.first) < partner(a.first) ? b.first : a.first,
          partner(b.last) > partner(a.last) ? b.last : a.last};
}

Cut CutIndex::cut_of(const Entry& entry) {
  if (entry.partner.begin == nowhere) return {entry.piece, std::nullopt};
  return {entry.piece, entry.partner};
}

std::optional<Cut> CutIndex::cut(std::size_t begin, std::size_t end) const {
  const auto index_of = [this](std::size_t offset) {
    const auto found = std::lower_bound(
        entries_.begin(), entries_.end(), offset,
        [](const Entry& entry, std::size_t wanted) { return entry.piece.begin < wanted; });
    return static_cast<std::size_t>(found - entries_.begin());
  };
  if (begin >= end) return std::nullopt;
  std::size_t from = index_of(begin);
  std::size_t to = index_of(end);
  if (from > 0 && entries_[from - 1].piece.word_end > begin) return cut_of(entries_[from - 1]);
  if (from >= to) return std::nullopt;
  if (entries_[to - 1].piece.word_end > end) return cut_of(entries_[to - 1]);
  Outermost found{from, from};
  const std::size_t count = entries_.size();
  for (from += count, to += count; from < to; from /= 2, to /= 2) {
    if (from % 2 == 1) found = both(found, outermost_[from++]);
    if (to % 2 == 1) found = both(found, outermost_[--to]);
  }
  const Entry& first = entries_[found.first];
  if (first.partner.begin < begin) return cut_of(first);
  const Entry& last = entries_[found.last];
  if (last.partner.begin >= end) return cut_of(last);
  return std::nullopt;
}

}  // namespace qo
