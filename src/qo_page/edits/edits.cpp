#include <qo_page/edits.h>

#include <algorithm>
#include <cstdint>
#include <deque>
#include <memory>
#include <utility>

#include <qo_page/edits/balance.h>
#include <qo_page/edits/composed_changes.h>
#include <qo_page/edits/edit_check.h>
#include <qo_page/edits/edit_writer.h>
#include <qo_page/edits/encoding.h>
#include <qo_page/edits/moves.h>
#include <qo_page/edits/operations.h>
#include <qo_page/text/node_text.h>
#include <qo_page/tree/node_access.h>
#include <qo_page/tree/tree_builder.h>

namespace qo {

namespace {

using Batches = std::deque<std::vector<Operation>>;

// Some operations, once, for all the nodes that they are carried out on.
struct Use {
  NodeIndex node;
  std::uint32_t batch;
};

// In document order; the operations on one node in the order in which they came.
std::vector<NodeEdits> by_node(std::vector<Use> uses, const Batches& batches, const Tree& tree) {
  const auto is_before = [](const Use& a, const Use& b) { return a.node < b.node; };
  std::stable_sort(uses.begin(), uses.end(), is_before);
  std::vector<NodeEdits> edits;
  OperationSet set;
  std::size_t checked = 0;  // of the operations on a node; those of one batch were checked before
  for (const Use& use : uses) {
    const bool goes_on = !edits.empty() && edits.back().node == use.node;
    if (!goes_on) {
      edits.push_back({use.node, {}});
      set = OperationSet();
      checked = 0;
    }
    std::vector<const Operation*>& operations = edits.back().operations;
    for (const Operation& operation : batches[use.batch]) operations.push_back(&operation);
    if (!goes_on) continue;
    try {
      while (checked < operations.size()) set.add(*operations[checked++], 0);
    } catch (const Error& error) {
      throw EditError(error.what(), tree[use.node].begin, NodeAccess::node(tree, use.node));
    }
  }
  return edits;
}

// The texts of some nodes, each once.
std::vector<NodeIndex> texts_of(const Tree& tree, std::vector<NodeIndex> nodes) {
  std::sort(nodes.begin(), nodes.end());
  std::vector<NodeIndex> texts;
  NodeIndex next = document_index;
  for (const NodeIndex node : nodes) {
    next = std::max(next, node);
    while (next < tree[node].subtree_end) {
      const NodeRecord& below = tree[next];
      const bool is_own = next == node && below.kind == NodeKind::comment;
      if (is_text(below) || is_own) texts.push_back(next);
      next = is_hidden(below) && next != node ? below.subtree_end : next + 1;
    }
  }
  return texts;
}

bool is_for_texts(const Operation& operation) {
  return operation.kind == Operation::Kind::substitute_text ||
         operation.kind == Operation::Kind::substitute_html;
}

// The innermost edited node that a place of the source is in, or the one before it.
Node node_at(const Tree& tree, const std::vector<NodeEdits>& edits, std::size_t offset) {
  const auto after = std::upper_bound(edits.begin(), edits.end(), offset,
                                      [&tree](std::size_t wanted, const NodeEdits& there) {
                                        return wanted < tree[there.node].begin;
                                      });
  const auto found = after == edits.begin() ? after : std::prev(after);
  return found == edits.end() ? Node() : NodeAccess::node(tree, found->node);
}

// Calls `make`, whose errors get the node that they are about.
template <class Make>
std::unique_ptr<Tree> with_node(const Tree& tree, const std::vector<NodeEdits>& edits, Make make) {
  try {
    return make();
  } catch (const EditError&) {
    throw;
  } catch (const Error& error) {
    throw EditError(error.what(), error.offset(), node_at(tree, edits, error.offset()));
  }
}

// Reads what was written; the index is left out where nothing changed, unless it is needed.
std::unique_ptr<Tree> checked(WrittenEdit& written, const Tree& tree, bool needs_index) {
  const bool is_changed = !written.changes.empty();
  auto new_tree = std::make_unique<Tree>();
  new_tree->source = std::move(written.source);
  new_tree->options = tree.options;
  new_tree->dialect = tree.dialect;
  if (is_changed || needs_index) TreeBuilder(*new_tree).build();
  if (is_changed) {
    check_edit(written, tree, *new_tree);
    check_balance(written, tree, *new_tree);
  }
  return new_tree;
}

std::unique_ptr<Tree> edited(const Tree& tree, const std::vector<NodeEdits>& edits,
                             bool needs_index, WrittenEdit& written) {
  return with_node(tree, edits, [&] {
    written = EditWriter(tree, edits).write();
    check_encoding(written, tree);
    return checked(written, tree, needs_index);
  });
}

// What moves is in the encoding of its page.
std::unique_ptr<Tree> moved(const Tree& tree, const std::vector<Move>& moves,
                            std::vector<Change>& changes) {
  const MoveEdits edits(tree, moves);
  return with_node(tree, edits.edits(), [&] {
    WrittenEdit written = EditWriter(tree, edits.edits()).write();
    std::unique_ptr<Tree> new_tree = checked(written, tree, true);
    edits.check(written, *new_tree);
    if (new_tree->source != tree.source) changes = std::move(written.changes);
    return new_tree;
  });
}

}  // namespace

struct Edits::State {
  const Tree& tree;
  CodeInText code;
  Batches batches;
  std::vector<Use> uses;

  void add(const std::vector<NodeIndex>& nodes, std::vector<Operation> operations) {
    if (operations.empty()) return;
    batches.push_back(std::move(operations));
    const auto batch = static_cast<std::uint32_t>(batches.size() - 1);
    for (const NodeIndex node : nodes) uses.push_back({node, batch});
  }

  // The new page and what makes it differ from the old one. Without changes, the index is left out
  // unless it is needed.
  std::unique_ptr<Tree> make(std::vector<Change>& changes, bool needs_index) const {
    std::vector<NodeEdits> edits = by_node(uses, batches, tree);
    const std::vector<Move> moves = take_moves(edits, tree);
    if (moves.empty()) return made(edits, needs_index, changes);
    if (edits.empty()) return moved(tree, moves, changes);
    WrittenEdit written;
    const std::unique_ptr<Tree> between = edited(tree, edits, true, written);
    try {
      const std::vector<Move> next = moves_in(*between, moves, written, tree);
      std::unique_ptr<Tree> last = moved(*between, next, changes);
      changes = composed(written.changes, changes);
      return last;
    } catch (const Error& error) {
      // A place of the page between is none that anybody knows.
      const NodeIndex node = moves.front().node;
      throw EditError(error.what(), tree[node].begin, NodeAccess::node(tree, node));
    }
  }

  std::unique_ptr<Tree> made(const std::vector<NodeEdits>& edits, bool needs_index,
                             std::vector<Change>& changes) const {
    WrittenEdit written;
    std::unique_ptr<Tree> new_tree = edited(tree, edits, needs_index, written);
    changes = std::move(written.changes);
    return new_tree;
  }
};

Edits::Edits(const Page& page, CodeInText code)
    : state_(new State{PageAccess::tree(page), code, {}, {}}) {}
Edits::~Edits() = default;

void Edits::add(Node node, const std::vector<Operation>& operations) {
  add(std::vector<Node>{node}, operations);
}

void Edits::add(const std::vector<Node>& nodes, const std::vector<Operation>& operations) {
  const Tree& tree = state_->tree;
  check_operations(operations);
  if (state_->code == CodeInText::refuse) check_has_no_code(operations, tree.options);
  std::vector<NodeIndex> own;
  own.reserve(nodes.size());
  for (const Node node : nodes) own.push_back(NodeAccess::index_in(tree, node));
  for (const Operation& operation : operations) {
    if (operation.kind == Operation::Kind::wrap) split_wrapper(operation.value, tree.options);
    for (const NodeIndex node : own) check_fits(operation, tree, node);
  }
  std::vector<Operation> of_nodes, of_texts;
  for (const Operation& operation : operations) {
    (is_for_texts(operation) ? of_texts : of_nodes).push_back(operation);
  }
  const std::size_t before = state_->uses.size();
  try {
    if (!of_texts.empty()) state_->add(texts_of(tree, own), of_texts);
    state_->add(own, std::move(of_nodes));
  } catch (...) {
    state_->uses.resize(before);
    throw;
  }
}

std::vector<const Operation*> Edits::operations(Node node) const {
  const NodeIndex wanted = NodeAccess::index_in(state_->tree, node);
  std::vector<const Operation*> found;
  for (const Use& use : state_->uses) {
    if (use.node != wanted) continue;
    for (const Operation& operation : state_->batches[use.batch]) found.push_back(&operation);
  }
  return found;
}

EditedSource Edits::apply() const {
  EditedSource edited;
  edited.source = std::move(state_->make(edited.changes, false)->source);
  return edited;
}

EditedPage Edits::apply_to_page() const {
  std::vector<Change> changes;
  std::unique_ptr<Tree> tree = state_->make(changes, true);
  return {PageAccess::page(std::move(tree)), std::move(changes)};
}

}  // namespace qo
