// The blocks of a template's code: {% if x %} with its {% else %} and its {% endif %}.

#ifndef QO_PAGE_TEMPLATE_CODE_BLOCKS_H
#define QO_PAGE_TEMPLATE_CODE_BLOCKS_H

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include <qo_page/base/finder.h>
#include <qo_page/template/block_stack.h>
#include <qo_page/template/cut_index.h>
#include <qo_page/template/loose_marks.h>
#include <qo_page/template/plain_sections.h>

namespace qo {

// Reads the code of a whole source, whatever markup it is in: a template engine does not care.
class CodeBlocks {
 public:
  // Takes time in proportion to the source.
  explicit CodeBlocks(std::string_view source);

  // In the order of the source.
  const std::vector<CodePiece>& pieces() const { return pieces_; }
  const std::vector<CodeBlock>& blocks() const { return blocks_; }

  // Nothing when the range cuts no block.
  std::optional<Cut> cut(std::size_t begin, std::size_t end) const { return cuts_.cut(begin, end); }

  // The beginning of the branch that an offset is in, when it is not in front of `from`; nothing
  // outside of blocks.
  std::optional<CodePiece> branch_at(std::size_t offset, std::size_t from = 0) const;

  // How many pieces that must begin or end a block are no part of one, and how many pieces that may
  // do so.
  std::size_t half_count() const { return half_count_; }
  std::size_t unmatched_count() const { return unmatched_count_; }

 private:
  // Two neighbours of one block.
  struct Link {
    std::size_t first, second;  // indexes of pieces
  };

  // Each kind's blocks do not see those of another: code in <> brackets, in {{}} and in {%%}, and
  // then the families of marks.
  enum Kind : std::size_t { angle, braces, percent, loose };
  static constexpr std::size_t kinds = loose + mark_families;
  using Links = std::vector<Link>;
  struct Reading {
    std::array<BlockStack, kinds> stacks;
    PlainSections sections;
    Finder comment_begin{"{#"}, comment_end{"#}"};
  };

  void read(std::string_view source, Reading& reading);
  void read_code(std::string_view code, CodePiece piece, Reading& reading);
  void add(std::size_t kind, const std::vector<CodeStep>& steps, CodePiece piece, Reading& reading);
  void set_around(std::size_t kind);
  void read_cut_comment(std::string_view source, std::size_t at, Reading& reading);
  void add_lone(std::size_t kind, const BlockStack& stack);
  static bool is_half(std::size_t kind, const CodeStep& step, const BlockStack& stack);
  void count_halves(std::size_t kind, const BlockStack& stack);

  std::vector<CodePiece> pieces_;
  std::vector<CodeBlock> blocks_;
  CutIndex cuts_;
  std::size_t half_count_ = 0;
  std::size_t unmatched_count_ = 0;
  std::array<Links, kinds> links_;

  // For each kind that has blocks, and each number of pieces that are in front of a place: the
  // innermost link around it, or `none`.
  static constexpr std::size_t none = static_cast<std::size_t>(-1);
  std::array<std::vector<std::size_t>, kinds> around_;
};

}  // namespace qo

#endif
