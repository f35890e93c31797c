// The positions that :nth-child() and its like are given: "2n + 1", "odd", "-n+3", "5".

#ifndef QO_PAGE_SELECTORS_NTH_H
#define QO_PAGE_SELECTORS_NTH_H

#include <qo_page/selectors/reader.h>
#include <qo_page/selectors/syntax.h>

namespace qo::selectors {

Nth read_nth(Reader& reader);

}  // namespace qo::selectors

#endif
