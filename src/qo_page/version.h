// The version of these headers. The build, the packages and the tool take it from here.

#ifndef QO_PAGE_VERSION_H
#define QO_PAGE_VERSION_H

#define QO_PAGE_VERSION_MAJOR 2
#define QO_PAGE_VERSION_MINOR 0
#define QO_PAGE_VERSION_PATCH 0
#define QO_PAGE_VERSION "2.0.0"

#endif
