// The values of forms as JSON.

#ifndef QO_CLI_FORM_JSON_H
#define QO_CLI_FORM_JSON_H

#include <vector>

#include <json/json.h>

#include <qo_page/form_data.h>

namespace cli {

// An array of [name, value].
Json::Value pairs_of(const std::vector<qo::FormEntry>& entries);

// An object: "a[b]" is the member b of the object a, "a[]" an item of the array a; a plain name
// that comes several times has an array, too. Throws Failure when one name is used in ways that
// exclude each other.
Json::Value nested_values(const std::vector<qo::FormEntry>& entries);

}  // namespace cli

#endif
