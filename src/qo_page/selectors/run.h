// Carries out a program on a page.

#ifndef QO_PAGE_SELECTORS_RUN_H
#define QO_PAGE_SELECTORS_RUN_H

#include <cstddef>
#include <vector>

#include <qo_html/qo_html.h>

#include <qo_page/selectors/program.h>

namespace qo::selectors {

std::vector<_qo_html*> select(const Program& program, _qo_html* root, std::size_t most);

bool matches(const Program& program, _qo_html* node);

}  // namespace qo::selectors

#endif
