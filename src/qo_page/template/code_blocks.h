// The blocks of a template's code: {% if x %} with its {% else %} and its {% endif %}.

#ifndef QO_PAGE_TEMPLATE_CODE_BLOCKS_H
#define QO_PAGE_TEMPLATE_CODE_BLOCKS_H

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include <qo_page/template/code_steps.h>

namespace qo {

// Where a piece of code is that begins, divides or ends a block.
struct CodePiece {
  std::size_t begin, end;
};

struct CodeBlock {
  std::vector<std::size_t> pieces;  // that begin it, divide it and end it, in order
  bool is_loop;
  bool has_default;  // one of its branches is always taken
};

// Reads the code of a whole source, whatever markup it is in: a template engine does not care.
class CodeBlocks {
 public:
  // Takes time in proportion to the source.
  explicit CodeBlocks(std::string_view source);

  // In the order of the source.
  const std::vector<CodePiece>& pieces() const { return pieces_; }
  const std::vector<CodeBlock>& blocks() const { return blocks_; }

  // Two pieces of one block, one within a range and one outside; nothing when the range cuts no
  // block.
  struct Cut {
    CodePiece within, outside;
  };
  std::optional<Cut> cut(std::size_t begin, std::size_t end) const;

  // The beginning of the branch that an offset is in; nothing outside of blocks.
  std::optional<CodePiece> branch_at(std::size_t offset) const;

 private:
  // Two neighbours of one block.
  struct Link {
    std::size_t first, second;  // indexes of pieces
  };

  static constexpr std::size_t kinds = 3;  // of brackets; their blocks do not see each other
  using Links = std::vector<Link>;

  void set_around(std::size_t kind, const std::vector<CodeBlock>& blocks);
  std::size_t count_before(std::size_t offset) const;

  std::vector<CodePiece> pieces_;
  std::vector<CodeBlock> blocks_;
  std::array<Links, kinds> links_;

  // For each kind, and each number of pieces that are in front of a place: the innermost link
  // around it, or `none`.
  static constexpr std::size_t none = static_cast<std::size_t>(-1);
  std::array<std::vector<std::size_t>, kinds> around_;
};

}  // namespace qo

#endif
