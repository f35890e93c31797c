// Carries out a program on a page.

#ifndef QO_PAGE_SELECTORS_RUN_H
#define QO_PAGE_SELECTORS_RUN_H

#include <cstddef>
#include <vector>

#include <qo_page/selectors/program.h>
#include <qo_page/tree/tree.h>

namespace qo::selectors {

// The nodes below `root` that the program finds, in document order.
std::vector<NodeIndex> select(const Program& program, const Tree& tree, NodeIndex root,
                              std::size_t most);

bool matches(const Program& program, const Tree& tree, NodeIndex node);

}  // namespace qo::selectors

#endif
