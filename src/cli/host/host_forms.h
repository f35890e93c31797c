// The values of forms as the library gives them.

#ifndef QO_CLI_HOST_HOST_FORMS_H
#define QO_CLI_HOST_HOST_FORMS_H

#include <cstddef>
#include <vector>

#include <json/json.h>

#include "args/options.h"
#include "io/files.h"

namespace cli {

// An object for each of the first `most` matches. Throws Failure when the library refuses the page
// or a form.
std::vector<Json::Value> host_form_values(const Input& input, const Options& options,
                                          std::size_t most);

}  // namespace cli

#endif
