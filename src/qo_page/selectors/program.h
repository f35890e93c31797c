// A selector in the form in which it is carried out.
//
// Whether a node matches a compound of simple tests is told by the node itself. All else is found
// out on walks over the page, in steps. Each step sets one bit, its slot, of the node that the walk
// is at. A part of "a > b c" needs that the part before it matched at the parent, or at one of the
// nodes above or beside. A forward walk knows these. A backward walk, from the last node to the
// first, knows the nodes below and those after, which :has() and counting from the end need. Where
// one walk needs what another finds, the bits are kept for it. Forward and backward walks take
// turns; the last one goes forward, and finds the nodes.

#ifndef QO_PAGE_SELECTORS_PROGRAM_H
#define QO_PAGE_SELECTORS_PROGRAM_H

#include <cstdint>
#include <string>
#include <vector>

#include <qo_page/selectors/syntax.h>

namespace qo::selectors {

// What is known of a node, a bit for each step.
using Slots = std::uint64_t;
constexpr unsigned slot_count = 64;
constexpr Slots slot_bit(unsigned slot) {
  return Slots{1} << slot;
}

struct Step {
  enum class Kind {
    match,   // the compound, where the link leads to a node that has the slot `from`
    count,   // the compound, at a position among the siblings that match it
    inherit  // the compound, or where `having` does not match, what the parent has
  };

  Kind kind = Kind::match;
  unsigned slot = 0;
  Compound compound;
  Combinator link = Combinator::none;
  unsigned from = 0;
  Nth nth;
  unsigned counter = 0;
  Compound having;
};

// One walk over the page.
struct Pass {
  std::vector<Step> steps;
};

struct Program {
  std::string text;
  std::vector<Pass> passes;   // forward those of even position; the first may have no steps
  std::vector<Step> outputs;  // of the last one: a node is found when any of them matches
  unsigned counters = 0;

  // What a walk has to keep track of.
  bool has_links = false;      // slots of nodes above and beside
  bool has_positions = false;  // among siblings
  bool has_comments = false;   // which are looked at as well
};

// Throws SelectorError.
Program compile(const std::string& text);

}  // namespace qo::selectors

#endif
