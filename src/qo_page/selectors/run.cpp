#include <qo_page/selectors/run.h>

#include <algorithm>
#include <optional>

#include <qo_html/qo_html_walk.h>

#include <qo_page/selectors/backward_walk.h>
#include <qo_page/selectors/kept_slots.h>
#include <qo_page/selectors/walker.h>

namespace qo::selectors {

namespace {

_qo_html* document_of(_qo_html* node) {
  while (node->parent != nullptr) node = node->parent;
  return node;
}

class Run {
 public:
  Run(const Program& program, _qo_html* root, const Node* scope)
      : program_(program),
        root_(root),
        document_(document_of(root)),
        matcher_(program, *as_node(document_), scope),
        keeps_slots_(program.passes.size() > 1),
        keeps_levels_(program.has_links || program.has_positions) {}

  std::vector<_qo_html*> below(std::size_t most) {
    if (const std::vector<Node*>* const named = only_named()) return below_of(*named, most);
    run_earlier_passes();
    begin_walk(program_.passes.size() - 1);
    TreeWalk walk(start());
    go_to_root(walk);
    std::vector<_qo_html*> found;
    const std::size_t depth = walk.depth();
    while (found.size() < most) {
      _qo_html* const node = walk.next();
      if (node == nullptr || walk.depth() <= depth) break;
      if (visit(*as_node(node), walk.depth())) found.push_back(node);
    }
    return found;
  }

  bool at_root() {
    run_earlier_passes();
    begin_walk(program_.passes.size() - 1);
    TreeWalk walk(start());
    return go_to_root(walk);
  }

 private:
  // The elements that can match, where their own name and attributes are all that counts; else
  // null.
  const std::vector<Node*>* only_named() const {
    if (keeps_slots_ || keeps_levels_ || program_.outputs.size() != 1) return nullptr;
    const Tag tag = program_.outputs[0].compound.tag;
    if (tag == Tag::unknown) return nullptr;
    return &as_document(*document_).elements[static_cast<std::size_t>(tag)];
  }

  std::vector<_qo_html*> below_of(const std::vector<Node*>& named, std::size_t most) {
    begin_walk(program_.passes.size() - 1);
    const Extent& around = as_node(root_)->extent;
    const auto begins_before = [](const Node* node, std::size_t offset) {
      return node->extent.begin < offset;
    };
    auto node = std::lower_bound(named.begin(), named.end(), around.content_begin, begins_before);
    std::vector<_qo_html*> found;
    for (; node != named.end() && (*node)->extent.begin < around.content_end; ++node) {
      if (found.size() == most) break;
      if (visit(**node, 0)) found.push_back(*node);
    }
    return found;
  }

  void run_earlier_passes() {
    for (std::size_t i = 0; i + 1 < program_.passes.size(); ++i) {
      if (program_.passes[i].steps.empty()) continue;
      begin_walk(i);
      if (i % 2 == 0) {
        TreeWalk walk(document_);
        visit_all(walk);
      } else {
        BackwardWalk walk(document_);
        visit_all(walk);
      }
    }
  }

  void begin_walk(std::size_t pass) {
    walker_.emplace(program_, matcher_, pass);
    kept_.begin_walk();
  }

  template <class Walk>
  void visit_all(Walk& walk) {
    while (const _qo_html* const node = walk.next()) visit(*as_node(node), walk.depth());
  }

  // Whether the program finds the node, if this is the last walk.
  bool visit(const Node& node, std::size_t depth) {
    const bool counts = node.kind == NodeKind::element || (program_.has_comments && node.isComment);
    if (!counts) return false;
    Slots none = 0;
    return walker_->visit(node, depth, keeps_slots_ ? kept_.next() : none);
  }

  // Where the last walk has to begin.
  _qo_html* start() const { return keeps_levels_ ? document_ : root_; }

  // Takes the walk to the root, past the nodes that tell something about it. Whether the program
  // finds the root.
  bool go_to_root(TreeWalk& walk) {
    std::vector<const _qo_html*> path = {root_};
    while (path.back() != start()) path.push_back(path.back()->parent);
    for (;;) {
      const _qo_html* const node = walk.next();
      const bool is_found = visit(*as_node(node), walk.depth());
      if (node == root_) return is_found;
      const bool leads_on =
          walk.depth() < path.size() && path[path.size() - 1 - walk.depth()] == node;
      if (!leads_on && !keeps_slots_) walk.skip_children();
    }
  }

  const Program& program_;
  _qo_html* root_;
  _qo_html* document_;
  Matcher matcher_;
  bool keeps_slots_, keeps_levels_;
  KeptSlots kept_;
  std::optional<Walker> walker_;
};

}  // namespace

std::vector<_qo_html*> select(const Program& program, _qo_html* root, std::size_t most) {
  const bool is_document = as_node(root)->kind == NodeKind::document;
  return Run(program, root, is_document ? nullptr : as_node(root)).below(most);
}

bool matches(const Program& program, _qo_html* node) {
  return Run(program, node, nullptr).at_root();
}

}  // namespace qo::selectors
