// Nodes that go to other places of their page.

#ifndef QO_PAGE_EDITS_MOVES_H
#define QO_PAGE_EDITS_MOVES_H

#include <deque>
#include <vector>

#include <qo_page/edits/edit_writer.h>
#include <qo_page/edits/node_edits.h>

namespace qo {

struct Move {
  NodeIndex node, target;
  Operation::Kind kind;
};

// Takes the moves out of the operations on nodes, which are in document order.
std::vector<Move> take_moves(std::vector<NodeEdits>& edits, const Tree& tree);

// The same moves in a page that was made of their own; those of nodes that are gone are left out.
// Throws EditError when a target is gone.
std::vector<Move> moves_in(const Tree& new_tree, const std::vector<Move>& moves,
                           const WrittenEdit& written, const Tree& old_tree);

// Moves are removals, and insertions of the same bytes.
class MoveEdits {
 public:
  // Throws EditError when a node moves together with what it is in, or goes into what moves. The
  // tree must outlive the object.
  MoveEdits(const Tree& tree, const std::vector<Move>& moves);

  // In document order.
  const std::vector<NodeEdits>& edits() const { return edits_; }

  // Throws EditError unless what was put in reads as the nodes that were taken out.
  void check(const WrittenEdit& written, const Tree& new_tree) const;

 private:
  // What goes to one place, one after the other.
  struct Arrival {
    NodeIndex target;
    Operation operation;
    std::vector<NodeIndex> nodes;
  };

  void add_arrivals(std::vector<Move> moves);
  void check_arrival(const Arrival& arrival, std::size_t begin, const Tree& new_tree) const;

  const Tree& tree_;
  const Operation removal_ = remove();
  std::deque<Arrival> arrivals_;
  std::vector<NodeEdits> edits_;
};

}  // namespace qo

#endif
