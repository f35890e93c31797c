// The text of nodes as a person reads it.

#ifndef QO_PAGE_TEXT_READABLE_TEXT_H
#define QO_PAGE_TEXT_READABLE_TEXT_H

#include <string>
#include <string_view>

#include <qo_page/tree/tree.h>

namespace qo {

// Collects text; all white space between two words becomes one blank, none is left at the ends.
class ReadableText {
 public:
  void add(std::string_view text);

  // What comes next is on a line, or in a cell, of its own.
  void begin_block() { is_apart_ = true; }

  std::string take() { return std::move(out_); }

 private:
  std::string out_;
  bool is_apart_ = false;
};

enum class NestedTables { read, left_out };

// The decoded text of the node and of all that is below it, but for what is hidden there.
std::string readable_text(const Tree& tree, NodeIndex node, NestedTables nested);

}  // namespace qo

#endif
