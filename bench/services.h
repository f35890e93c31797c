// The benchmark's host services: as cheap as a host can make them.

#ifndef QO_HTML_BENCH_SERVICES_H
#define QO_HTML_BENCH_SERVICES_H

#include <cstddef>

std::size_t live_nodes();

#endif
