// Ready-made host services: counters per tag and an assertion reporter that prints failed checks.
// Linking qo_html::default_host puts them into the host process; a host with services of its own
// leaves it out.

#ifndef QO_HTML_DEFAULT_HOST_H
#define QO_HTML_DEFAULT_HOST_H

#include <string>

#include <qo_html/qo_html_host.h>

// How many objects of that tag ("[qo_html]" for nodes) were counted up and not yet down again; 0
// for a tag that was never seen. May be called from any thread.
QO_HTML_API long qo_object_ref_count(const std::string& tag);

#endif
