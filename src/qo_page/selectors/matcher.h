// Whether a node matches a compound, once its slots are known.

#ifndef QO_PAGE_SELECTORS_MATCHER_H
#define QO_PAGE_SELECTORS_MATCHER_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <qo_page/selectors/page_text.h>
#include <qo_page/selectors/program.h>
#include <qo_page/selectors/sibling_positions.h>
#include <qo_page/tree/tree.h>

namespace qo::selectors {

// A node as a walk has come to it.
struct Here {
  NodeIndex node;
  std::size_t depth = 0;
  Slots slots = 0;
  std::uint32_t place = 0;            // among the elements beside it, from where the walk began
  std::uint32_t* siblings = nullptr;  // how many these are; 0 until counted
  bool is_backward = false;
};

// One for each run: it remembers what it has found out about the page.
class Matcher {
 public:
  // `scope` is what :scope means; no_node: the elements at the top of the page.
  Matcher(const Program& program, const Tree& tree, NodeIndex scope)
      : program_(program), tree_(tree), scope_(scope), positions_(tree) {}

  bool matches(const Compound& compound, const Here& here) {
    const NodeRecord& record = tree_[here.node];
    if (compound.tag != Tag::unknown && !has_name(compound, here.node)) return false;
    if (record.kind != NodeKind::element &&
        !(compound.of_comments && record.kind == NodeKind::comment)) {
      return false;
    }
    return matches_tests(compound, here);
  }

  // What holds for the whole page, for elements with nothing above them that says otherwise.
  bool matches_page(const Compound& compound);

 private:
  // Where case counts, the tag of an element does not tell that of a selector.
  bool has_name(const Compound& compound, NodeIndex node) const {
    return tree_.dialect->has_case ? tree_.name(node) == compound.name
                                   : tree_[node].tag == compound.tag;
  }

  bool matches_tests(const Compound& compound, const Here& here);
  bool matches_page(const Test& test);

  template <class LocalTest>
  bool matches_one(const LocalTest& test, const Here& here);
  bool matches_one(const PositionTest& test, const Here& here);
  bool matches_one(const AnyTest& test, const Here& here);
  bool matches_one(const TextTest& test, const Here& here);
  bool matches_one(const PatternTest& test, const Here& here);
  bool matches_one(const LanguageTest& test, const Here& here);
  bool matches_one(const DirectionTest& test, const Here& here);
  bool matches_one(const Fact& fact, const Here& here);
  bool matches_one(const SlotTest& test, const Here& here);
  bool matches_one(const CountTest&, const Here&) { return false; }    // is a slot by now
  bool matches_one(const HasTest&, const Here&) { return false; }      // likewise
  bool matches_one(const NearestTest&, const Here&) { return false; }  // likewise

  PageText& page_text();
  bool is_default_button(NodeIndex node);
  bool is_at_top(NodeIndex node) const { return tree_.parent(node) == document_index; }

  const Program& program_;
  const Tree& tree_;
  NodeIndex scope_;
  SiblingPositions positions_;
  std::optional<PatternBudget> budget_;
  std::optional<PageText> text_;
  std::optional<std::vector<NodeIndex>> default_buttons_;
};

}  // namespace qo::selectors

#endif
