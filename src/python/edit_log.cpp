#include <algorithm>
#include <iterator>

#include "edits.h"

namespace qo_python {

void EditLog::add(const std::vector<qo::Node>& nodes,
                  const std::vector<qo::Operation>& operations) {
  const std::lock_guard<std::mutex> guard(lock_);
  try {
    edits_.add(nodes, operations);
    batches_.push_back({nodes, operations});
    return;
  } catch (const qo::EditError&) {
    // Some nodes are refused, which one by one will tell.
  }
  for (const qo::Node node : nodes) {
    try {
      edits_.add(node, operations);
      batches_.push_back({{node}, operations});
    } catch (const qo::EditError& error) {
      refused_.push_back({error.node(), error});
    }
  }
}

std::unique_ptr<qo::Edits> EditLog::edits_without(const std::set<qo::Node>& left_out) const {
  auto edits = std::make_unique<qo::Edits>(document_->page(), code_);
  for (const Batch& batch : batches_) {
    std::vector<qo::Node> nodes;
    std::copy_if(batch.nodes.begin(), batch.nodes.end(), std::back_inserter(nodes),
                 [&](qo::Node node) { return left_out.count(node) == 0; });
    edits->add(nodes, batch.operations);
  }
  return edits;
}

AppliedEdits EditLog::apply(bool skips_refused) {
  const std::lock_guard<std::mutex> guard(lock_);
  if (!skips_refused && !refused_.empty()) {
    const Refusal& first = refused_.front();
    throw qo::EditError(first.error.what(), first.error.offset(), first.node);
  }
  std::vector<Refusal> refused = refused_;
  std::set<qo::Node> left_out;
  for (const Refusal& one : refused) left_out.insert(one.node);
  std::unique_ptr<qo::Edits> rest;
  if (!left_out.empty()) rest = edits_without(left_out);
  for (;;) {
    try {
      return {(rest == nullptr ? edits_ : *rest).apply_to_page(), std::move(refused)};
    } catch (const qo::EditError& error) {
      if (!skips_refused || !left_out.insert(error.node()).second) throw;
      refused.push_back({error.node(), error});
    }
    rest = edits_without(left_out);
  }
}

}  // namespace qo_python
