// The values of forms as JSON.

#ifndef QO_CLI_COMMANDS_FORM_JSON_H
#define QO_CLI_COMMANDS_FORM_JSON_H

#include <vector>

#include <json/json.h>

#include <qo_page/form_data.h>

namespace cli {

// An array of [name, value].
Json::Value pairs_of(const std::vector<qo::FormEntry>& entries);

// An object: "a[b]" is the member b of the object a, "a[]" an item of the array a; a plain name
// that comes several times has an array, too. Where names contradict each other, as "a" and "a[b]"
// do, each is a member under its whole name.
Json::Value nested_values(const std::vector<qo::FormEntry>& entries);

}  // namespace cli

#endif
