// How fast pages are read, searched and edited by qo_page.

#ifndef QO_HTML_BENCH_PAGE_BENCHMARK_H
#define QO_HTML_BENCH_PAGE_BENCHMARK_H

#include "pages.h"

// Registers the benchmarks. Their names are page/JOB/WHO on `pages`, which must stay, and
// growth/JOB/SIZE on texts of their own.
void register_page_benchmarks(const Pages& pages);

// The bytes of heap that a page and its nodes take.
std::size_t heap_of_page(const std::string& text);

#endif
