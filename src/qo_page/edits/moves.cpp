#include <qo_page/edits/moves.h>

#include <algorithm>
#include <string>
#include <utility>

#include <qo_page/edits/edit_error.h>
#include <qo_page/edits/new_places.h>
#include <qo_page/tree/node_access.h>

namespace qo {

namespace {

using Kind = Operation::Kind;

bool is_move(const Operation* operation) {
  return operation->kind == Kind::move_before || operation->kind == Kind::move_after ||
         operation->kind == Kind::move_into;
}

Kind insertion_for(Kind move) {
  switch (move) {
    case Kind::move_before:
      return Kind::insert_before;
    case Kind::move_after:
      return Kind::insert_after;
    default:
      return Kind::append;
  }
}

[[noreturn]] void fail(const Tree& tree, NodeIndex node, const std::string& message) {
  throw EditError(message, tree[node].begin, NodeAccess::node(tree, node));
}

// The node other than a text that begins at an offset; none when there is none.
NodeIndex node_at(const Tree& tree, std::size_t offset) {
  const NodeRecord* const first = tree.nodes.begin() + 1;
  const NodeRecord* const last = tree.nodes.begin() + tree.size();
  const NodeRecord* found = std::lower_bound(
      first, last, offset,
      [](const NodeRecord& node, std::size_t wanted) { return node.begin < wanted; });
  while (found != last && found->begin == offset && found->kind == NodeKind::text) ++found;
  if (found == last || found->begin != offset) return no_node;
  return static_cast<NodeIndex>(found - tree.nodes.begin());
}

bool is_gone(NodeIndex node, const WrittenEdit& written) {
  const auto next =
      std::upper_bound(written.gone.begin(), written.gone.end(), node,
                       [](NodeIndex wanted, const GoneNodes& gone) { return wanted < gone.begin; });
  return next != written.gone.begin() && node < std::prev(next)->end;
}

// Whether two nodes are the same, each as far from where its subtree begins.
bool is_same_node(const Tree& a, NodeIndex node, std::size_t a_begin, const Tree& b,
                  NodeIndex other, std::size_t b_begin) {
  const NodeRecord& one = a[node];
  const NodeRecord& two = b[other];
  return one.kind == two.kind && one.space == two.space && one.has_content == two.has_content &&
         one.begin - a_begin == two.begin - b_begin &&
         one.content_begin - a_begin == two.content_begin - b_begin &&
         one.content_end - a_begin == two.content_end - b_begin &&
         one.end - a_begin == two.end - b_begin &&
         one.subtree_end - node == two.subtree_end - other && a.name(node) == b.name(other);
}

bool is_same_subtree(const Tree& a, NodeIndex node, const Tree& b, NodeIndex other) {
  const NodeIndex size = a[node].subtree_end - node;
  if (other == no_node || b[other].subtree_end - other != size) return false;
  for (NodeIndex i = 0; i < size; ++i) {
    if (!is_same_node(a, node + i, a[node].begin, b, other + i, b[other].begin)) return false;
  }
  return true;
}

// Where in the source the arrivals of one kind go in.
std::size_t place_of(const NodeRecord& target, Kind insertion) {
  switch (insertion) {
    case Kind::insert_before:
      return target.begin;
    case Kind::insert_after:
      return target.end;
    default:
      return target.content_end;
  }
}

}  // namespace

std::vector<Move> take_moves(std::vector<NodeEdits>& edits, const Tree& tree) {
  std::vector<Move> moves;
  for (NodeEdits& there : edits) {
    std::vector<const Operation*>& operations = there.operations;
    for (const Operation* operation : operations) {
      if (!is_move(operation)) continue;
      moves.push_back({there.node, NodeAccess::index_in(tree, operation->target), operation->kind});
    }
    operations.erase(std::remove_if(operations.begin(), operations.end(), is_move),
                     operations.end());
  }
  const auto has_none = [](const NodeEdits& there) { return there.operations.empty(); };
  edits.erase(std::remove_if(edits.begin(), edits.end(), has_none), edits.end());
  return moves;
}

std::vector<Move> moves_in(const Tree& new_tree, const std::vector<Move>& moves,
                           const WrittenEdit& written, const Tree& old_tree) {
  const NewPlaces places(written, old_tree);
  const auto now = [&](NodeIndex node) {
    return node_at(new_tree, places.place_of(node).extent.begin);
  };
  std::vector<Move> found;
  for (const Move& move : moves) {
    if (is_gone(move.node, written)) continue;
    if (is_gone(move.target, written)) {
      fail(old_tree, move.node, "the place to move to is taken away");
    }
    found.push_back({now(move.node), now(move.target), move.kind});
  }
  return found;
}

MoveEdits::MoveEdits(const Tree& tree, const std::vector<Move>& moves) : tree_(tree) {
  NodeIndex end = 0;
  for (const Move& move : moves) {
    if (move.node < end) {
      fail(tree, move.node, named(tree, move.node) + " is in an element that is moved as well");
    }
    end = tree[move.node].subtree_end;
    edits_.push_back({move.node, {&removal_}});
  }
  for (const Move& move : moves) {
    const auto next =
        std::upper_bound(moves.begin(), moves.end(), move.target,
                         [](NodeIndex wanted, const Move& other) { return wanted < other.node; });
    if (next == moves.begin() || move.target >= tree[std::prev(next)->node].subtree_end) continue;
    fail(tree, move.node,
         "the place to move to is in " + named(tree, std::prev(next)->node) +
             ", which is moved as well");
  }
  add_arrivals(moves);
}

void MoveEdits::add_arrivals(std::vector<Move> moves) {
  std::stable_sort(moves.begin(), moves.end(), [](const Move& a, const Move& b) {
    return a.target != b.target ? a.target < b.target : a.kind < b.kind;
  });
  const std::size_t removals = edits_.size();
  for (const Move& move : moves) {
    const Kind kind = insertion_for(move.kind);
    const bool is_target =
        edits_.size() > removals && !arrivals_.empty() && arrivals_.back().target == move.target;
    if (!is_target || arrivals_.back().operation.kind != kind) {
      arrivals_.push_back({move.target, {kind, {}, {}}, {}});
      if (!is_target) edits_.push_back({move.target, {}});
      edits_.back().operations.push_back(&arrivals_.back().operation);
    }
    arrivals_.back().operation.value += tree_.html(move.node);
    arrivals_.back().nodes.push_back(move.node);
  }
  std::sort(edits_.begin(), edits_.end(),
            [](const NodeEdits& a, const NodeEdits& b) { return a.node < b.node; });
}

void MoveEdits::check(const WrittenEdit& written, const Tree& new_tree) const {
  for (const Arrival& arrival : arrivals_) {
    const std::string& text = arrival.operation.value;
    const std::size_t place = place_of(tree_[arrival.target], arrival.operation.kind);
    auto at = std::lower_bound(written.insertions.begin(), written.insertions.end(), place,
                               [](const Insertion& insertion, std::size_t wanted) {
                                 return insertion.old_begin < wanted;
                               });
    while (at != written.insertions.end() && at->old_begin == place &&
           std::string_view(new_tree.source).substr(at->begin, at->end - at->begin) != text) {
      ++at;
    }
    if (at == written.insertions.end() || at->old_begin != place) {
      fail(tree_, arrival.nodes.front(), "what is moved would not be a part of the page there");
    }
    check_arrival(arrival, at->begin, new_tree);
  }
}

void MoveEdits::check_arrival(const Arrival& arrival, std::size_t begin,
                              const Tree& new_tree) const {
  for (const NodeIndex node : arrival.nodes) {
    if (!is_same_subtree(tree_, node, new_tree, node_at(new_tree, begin))) {
      fail(tree_, node, named(tree_, node) + " would be read otherwise there");
    }
    begin += tree_[node].end - tree_[node].begin;
  }
}

}  // namespace qo
