// The version of these headers. The build, the packages and the tool take it from here.

#ifndef QO_HTML_VERSION_H
#define QO_HTML_VERSION_H

#define QO_HTML_VERSION_MAJOR 1
#define QO_HTML_VERSION_MINOR 1
#define QO_HTML_VERSION_PATCH 0
#define QO_HTML_VERSION "1.1.0"

#endif
