// The header's place up to version 1.0.
#include <qo_html/qo_html_default_host.h>
