#include <qo_page/edits.h>

#include <algorithm>
#include <cstdint>
#include <deque>
#include <utility>

#include <qo_html/qo_html_walk.h>

#include <qo_page/edits/balance.h>
#include <qo_page/edits/edit_check.h>
#include <qo_page/edits/edit_writer.h>
#include <qo_page/edits/encoding.h>
#include <qo_page/edits/operations.h>
#include <qo_page/text/node_text.h>
#include <qo_page/tree/node.h>

namespace qo {

namespace {

using Batches = std::deque<std::vector<Operation>>;

// Some operations, once, for all the nodes that they are carried out on.
struct Use {
  Node* node;
  std::uint32_t batch;
};

// In document order; the operations on one node in the order in which they came.
std::vector<NodeEdits> by_node(std::vector<Use> uses, const Batches& batches) {
  std::stable_sort(uses.begin(), uses.end(), [](const Use& a, const Use& b) {
    return a.node->extent.begin < b.node->extent.begin;
  });
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
    while (checked < operations.size()) set.add(*operations[checked++], use.node->extent.begin);
  }
  return edits;
}

// The texts of some nodes, each once.
std::vector<Node*> texts_of(std::vector<Node*> nodes) {
  std::sort(nodes.begin(), nodes.end(),
            [](const Node* a, const Node* b) { return a->extent.begin < b->extent.begin; });
  std::vector<Node*> texts;
  std::size_t covered_end = 0;
  for (Node* node : nodes) {
    if (node->extent.begin < covered_end) continue;
    covered_end = node->extent.end;
    TreeWalk walk(node);
    while (_qo_html* below = walk.next()) {
      if (below->isText) {
        texts.push_back(as_node(below));
      } else if (below != node && is_hidden(*as_node(below))) {
        walk.skip_children();
      }
    }
  }
  return texts;
}

bool is_for_texts(const Operation& operation) {
  return operation.kind == Operation::Kind::substitute_text;
}

}  // namespace

struct Edits::State {
  const Page& page;
  Batches batches;
  std::vector<Use> uses;

  void add(const std::vector<Node*>& nodes, std::vector<Operation> operations) {
    if (operations.empty()) return;
    batches.push_back(std::move(operations));
    const auto batch = static_cast<std::uint32_t>(batches.size() - 1);
    for (Node* node : nodes) uses.push_back({node, batch});
  }
};

Edits::Edits(const Page& page) : state_(new State{page, {}, {}}) {}
Edits::~Edits() = default;

void Edits::add(_qo_html* node, const std::vector<Operation>& operations) {
  add(std::vector<_qo_html*>{node}, operations);
}

void Edits::add(const std::vector<_qo_html*>& nodes, const std::vector<Operation>& operations) {
  check_operations(operations);
  for (const Operation& operation : operations) {
    if (operation.kind == Operation::Kind::wrap) {
      split_wrapper(operation.value, state_->page.options());
    }
    for (const _qo_html* node : nodes) check_fits(operation, *as_node(node));
  }
  std::vector<Node*> own;
  for (_qo_html* node : nodes) own.push_back(as_node(node));
  std::vector<Operation> of_nodes, of_texts;
  for (const Operation& operation : operations) {
    (is_for_texts(operation) ? of_texts : of_nodes).push_back(operation);
  }
  const std::size_t before = state_->uses.size();
  try {
    if (!of_texts.empty()) state_->add(texts_of(own), of_texts);
    state_->add(own, std::move(of_nodes));
  } catch (...) {
    state_->uses.resize(before);
    throw;
  }
}

EditedSource Edits::apply() const {
  const std::vector<NodeEdits> edits = by_node(state_->uses, state_->batches);
  WrittenEdit written = EditWriter(state_->page, edits).write();
  if (!written.changes.empty()) {
    check_encoding(written, state_->page);
    check_edit(written, state_->page);
    check_balance(written, state_->page);
  }
  return {std::move(written.source), std::move(written.changes)};
}

}  // namespace qo
