#include <qo_page/edits.h>

#include <algorithm>
#include <cstdint>
#include <deque>

#include <qo_page/edit_check.h>
#include <qo_page/edit_writer.h>
#include <qo_page/node.h>
#include <qo_page/operations.h>

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
  for (const Use& use : uses) {
    const bool goes_on = !edits.empty() && edits.back().node == use.node;
    if (!goes_on) edits.push_back({use.node, {}});
    for (const Operation& operation : batches[use.batch]) {
      edits.back().operations.push_back(&operation);
    }
    if (!goes_on) continue;
    try {
      check_together(edits.back().operations);
    } catch (const Error& error) {
      throw Error(error.what(), use.node->extent.begin);
    }
  }
  return edits;
}

}  // namespace

struct Edits::State {
  const Page& page;
  Batches batches;
  std::vector<Use> uses;
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
  state_->uses.reserve(state_->uses.size() + nodes.size());
  state_->batches.push_back(operations);
  const auto batch = static_cast<std::uint32_t>(state_->batches.size() - 1);
  for (_qo_html* node : nodes) state_->uses.push_back({as_node(node), batch});
}

EditedSource Edits::apply() const {
  const std::vector<NodeEdits> edits = by_node(state_->uses, state_->batches);
  WrittenEdit written = EditWriter(state_->page, edits).write();
  if (!written.changes.empty()) check_edit(written, state_->page.options());
  return {std::move(written.source), std::move(written.changes)};
}

}  // namespace qo
