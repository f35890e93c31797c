#ifndef QO_HTML_EXPORT_H
#define QO_HTML_EXPORT_H

// Marks what crosses the border of the shared library, in either direction. The library is compiled
// with hidden visibility: what does not carry this mark stays inside.
#define QO_HTML_API __attribute__((visibility("default")))

#endif
