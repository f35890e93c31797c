// Attributes as a browser takes them.

#ifndef QO_CLI_PAGES_ATTRIBUTES_H
#define QO_CLI_PAGES_ATTRIBUTES_H

#include <vector>

#include <qo_page/node.h>

namespace cli {

// Of several attributes of one name, in whatever case, the first counts.
std::vector<qo::Attribute> first_attributes(qo::Node node);

}  // namespace cli

#endif
