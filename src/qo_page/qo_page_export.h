#ifndef QO_PAGE_EXPORT_H
#define QO_PAGE_EXPORT_H

// Marks what leaves the shared library, which is compiled with hidden visibility.
#define QO_PAGE_API __attribute__((visibility("default")))

#endif
