#include <qo_page/selectors/run.h>

#include <qo_page/selectors/walker.h>

namespace qo::selectors {

namespace {

class Run {
 public:
  Run(const Program& program, const Tree& tree, NodeIndex root, NodeIndex scope)
      : program_(program), tree_(tree), root_(root), matcher_(program, tree, scope) {
    if (program.passes.size() > 1) kept_.resize(tree.size());
    const bool is_one = program.outputs.size() == 1;
    if (is_one && !keeps_levels() && !tree.dialect->has_case)
      wanted_ = program.outputs[0].compound.tag;
  }

  std::vector<NodeIndex> below(std::size_t most) {
    run_earlier_passes();
    Walker walker = last_walker();
    go_to_root(walker);
    std::vector<NodeIndex> found;
    for (NodeIndex node = root_ + 1; node < tree_[root_].subtree_end; ++node) {
      if (found.size() == most) break;
      if (visit(walker, node)) found.push_back(node);
    }
    return found;
  }

  bool at_root() {
    run_earlier_passes();
    Walker walker = last_walker();
    return go_to_root(walker);
  }

 private:
  bool keeps_levels() const { return program_.has_links || program_.has_positions; }

  Walker last_walker() {
    return Walker(program_, tree_, matcher_, kept_, program_.passes.size() - 1);
  }

  void run_earlier_passes() {
    for (std::size_t i = 0; i + 1 < program_.passes.size(); ++i) {
      if (program_.passes[i].steps.empty()) continue;
      Walker walker(program_, tree_, matcher_, kept_, i);
      visit_all(walker);
    }
  }

  void visit_all(Walker& walker) {
    const NodeIndex size = tree_.size();
    for (NodeIndex i = 0; i < size; ++i) visit(walker, walker.is_backward() ? size - 1 - i : i);
  }

  // Whether the program finds the node, if this is the last walk.
  bool visit(Walker& walker, NodeIndex node) {
    const NodeRecord& record = tree_[node];
    if (wanted_ != Tag::unknown && record.tag != wanted_) return false;
    const bool counts = record.kind == NodeKind::element ||
                        (program_.has_comments && record.kind == NodeKind::comment);
    return counts && walker.visit(node);
  }

  // Takes the walk to the root, past the nodes that tell something about it. Whether the program
  // finds the root.
  bool go_to_root(Walker& walker) {
    if (!keeps_levels()) return visit(walker, root_);
    for (NodeIndex node = document_index; node != root_;) {
      visit(walker, node);
      const bool leads_on = tree_[node].subtree_end > root_;
      node = leads_on ? node + 1 : tree_[node].subtree_end;
    }
    return visit(walker, root_);
  }

  const Program& program_;
  const Tree& tree_;
  NodeIndex root_;
  Matcher matcher_;
  std::vector<Slots> kept_;    // of each node, for the next walk
  Tag wanted_ = Tag::unknown;  // unless unknown, what no other tag can match
};

}  // namespace

std::vector<NodeIndex> select(const Program& program, const Tree& tree, NodeIndex root,
                              std::size_t most) {
  return Run(program, tree, root, root == document_index ? no_node : root).below(most);
}

bool matches(const Program& program, const Tree& tree, NodeIndex node) {
  return Run(program, tree, node, no_node).at_root();
}

}  // namespace qo::selectors
