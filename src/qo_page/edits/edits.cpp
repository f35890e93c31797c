#include <qo_page/edits.h>

#include <algorithm>
#include <cstdint>
#include <deque>
#include <memory>
#include <utility>

#include <qo_page/edits/balance.h>
#include <qo_page/edits/edit_check.h>
#include <qo_page/edits/edit_writer.h>
#include <qo_page/edits/encoding.h>
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

  // The innermost edited node that a place of the source is in, or the one before it.
  Node node_at(const std::vector<NodeEdits>& edits, std::size_t offset) const {
    const auto after = std::upper_bound(edits.begin(), edits.end(), offset,
                                        [this](std::size_t wanted, const NodeEdits& there) {
                                          return wanted < tree[there.node].begin;
                                        });
    const auto found = after == edits.begin() ? after : std::prev(after);
    return found == edits.end() ? Node() : NodeAccess::node(tree, found->node);
  }

  // The new page and what makes it differ from the old one. Without changes, the index is left out
  // unless it is needed.
  std::unique_ptr<Tree> make(std::vector<Change>& changes, bool needs_index) const {
    const std::vector<NodeEdits> edits = by_node(uses, batches, tree);
    EditWriter writer(tree, edits);
    try {
      WrittenEdit written = writer.write();
      check_encoding(written, tree);
      const bool is_changed = !written.changes.empty();
      if (is_changed) check_balance(written, tree);
      auto new_tree = std::make_unique<Tree>();
      new_tree->source = std::move(written.source);
      new_tree->options = tree.options;
      if (is_changed || needs_index) TreeBuilder(*new_tree).build();
      if (is_changed) check_edit(written, tree, *new_tree);
      changes = std::move(written.changes);
      return new_tree;
    } catch (const EditError&) {
      throw;
    } catch (const Error& error) {
      throw EditError(error.what(), error.offset(), node_at(edits, error.offset()));
    }
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
