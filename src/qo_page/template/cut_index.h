// Pieces of code that belong together, and ranges that hold some of them.

#ifndef QO_PAGE_TEMPLATE_CUT_INDEX_H
#define QO_PAGE_TEMPLATE_CUT_INDEX_H

#include <cstddef>
#include <optional>
#include <vector>

namespace qo {

// Where a piece of code is that begins, divides or ends a block.
struct CodePiece {
  std::size_t begin, end;
  std::size_t word_end = 0;  // of a mark that is plain text: up to here, no edit may begin or end
};

// Two pieces of one block, one within a range and one outside; nothing outside when the other half
// of the one within is not known.
struct Cut {
  CodePiece within;
  std::optional<CodePiece> outside;
};

class CutIndex {
 public:
  // An edit must not separate the two.
  void add(const CodePiece& first, const CodePiece& second);

  // An edit must not hold it.
  void add_lone(const CodePiece& piece);

  // To be called once, after the last piece.
  void finish();

  // Takes time that grows with the logarithm of the count of pieces.
  std::optional<Cut> cut(std::size_t begin, std::size_t end) const;

 private:
  struct Entry {
    CodePiece piece, partner;
  };

  // The entries of a range whose partners are the first and the last.
  struct Outermost {
    std::size_t first, last;
  };

  static Cut cut_of(const Entry& entry);
  Outermost both(const Outermost& a, const Outermost& b) const;

  std::vector<Entry> entries_;        // in the order of the source
  std::vector<Outermost> outermost_;  // a tree: the second half is the entries themselves
};

}  // namespace qo

#endif
