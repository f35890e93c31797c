// Whether a node matches a compound, once its slots are known.

#ifndef QO_PAGE_SELECTORS_MATCHER_H
#define QO_PAGE_SELECTORS_MATCHER_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>

#include <qo_page/selectors/page_text.h>
#include <qo_page/selectors/program.h>
#include <qo_page/selectors/sibling_positions.h>
#include <qo_page/tree/node.h>

namespace qo::selectors {

// A node as a walk has come to it.
struct Here {
  const Node* node;
  std::size_t depth = 0;
  Slots slots = 0;
  std::uint32_t place = 0;            // among the elements beside it, from where the walk began
  std::uint32_t* siblings = nullptr;  // how many these are; 0 until counted
  bool is_backward = false;
};

// One for each run: it remembers what it has found out about the page.
class Matcher {
 public:
  // With `scope`, that is what :scope means; otherwise the elements at the top of the page.
  Matcher(const Program& program, const Node& document, const Node* scope)
      : program_(program), document_(document), scope_(scope) {}

  bool matches(const Compound& compound, const Here& here) {
    const Node& node = *here.node;
    if (compound.tag != Tag::unknown && compound.tag != node.name) return false;
    if (node.kind != NodeKind::element && !(compound.of_comments && node.isComment)) return false;
    return matches_tests(compound, here);
  }

  // What is said of the document, for elements that have nothing above that tells.
  bool matches_page(const Compound& compound);

 private:
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
  bool is_default_button(const Node& node);

  const Program& program_;
  const Node& document_;
  const Node* scope_;
  SiblingPositions positions_;
  std::optional<PatternBudget> budget_;
  std::optional<PageText> text_;
  std::optional<std::unordered_set<const Node*>> default_buttons_;
};

}  // namespace qo::selectors

#endif
