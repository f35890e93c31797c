#include "form_json.h"

#include <string>
#include <string_view>
#include <utility>

#include "failure.h"
#include "json_text.h"
#include "text.h"

namespace cli {

namespace {

constexpr std::size_t most_keys = 100;  // names with more are plain: JSON is written by recursion

// A name and its keys: "a[b][]" is a, b and an empty one. A name that is written otherwise is one
// whole.
std::vector<std::string> keys_of(const std::string& name) {
  const std::size_t bracket = name.find('[');
  std::vector<std::string> keys = {name.substr(0, bracket)};
  if (bracket == 0 || bracket == std::string::npos) return {name};
  for (std::size_t begin = bracket; begin < name.size();) {
    const std::size_t end = name.find(']', begin);
    const bool is_key = name[begin] == '[' && end != std::string::npos &&
                        name.find('[', begin + 1) >= end && keys.size() <= most_keys;
    if (!is_key) return {name};
    keys.push_back(name.substr(begin + 1, end - begin - 1));
    begin = end + 1;
  }
  return keys;
}

// Where the value of a key goes within what is there.
Json::Value& item(Json::Value& container, const std::string& key, bool is_base) {
  if (key.empty() && !is_base) {
    if (container.isNull()) container = Json::Value(Json::arrayValue);
    if (!container.isArray()) throw Json::LogicError("");
    return container.append(Json::Value());
  }
  if (container.isNull()) container = Json::Value(Json::objectValue);
  if (!container.isObject()) throw Json::LogicError("");
  return container[valid_utf8(key)];
}

void put(Json::Value& place, const std::string& value) {
  if (place.isObject()) throw Json::LogicError("");
  if (place.isNull()) {
    place = json_string(value);
    return;
  }
  if (place.isString()) {
    Json::Value several(Json::arrayValue);
    several.append(place);
    place = std::move(several);
  }
  place.append(json_string(value));
}

}  // namespace

Json::Value pairs_of(const std::vector<qo::FormEntry>& entries) {
  Json::Value pairs(Json::arrayValue);
  for (const qo::FormEntry& entry : entries) {
    Json::Value pair(Json::arrayValue);
    pair.append(json_string(entry.name));
    pair.append(json_string(entry.value));
    pairs.append(std::move(pair));
  }
  return pairs;
}

Json::Value nested_values(const std::vector<qo::FormEntry>& entries) {
  Json::Value values(Json::objectValue);
  for (const qo::FormEntry& entry : entries) {
    try {
      Json::Value* place = &values;
      bool is_base = true;
      for (const std::string& key : keys_of(entry.name)) {
        place = &item(*place, key, std::exchange(is_base, false));
      }
      put(*place, entry.value);
    } catch (const Json::Exception&) {
      throw Failure("the name " + quoted(entry.name, 60) +
                    " contradicts one before it, as \"a\" and \"a[b]\" do; --pairs prints all");
    }
  }
  return values;
}

}  // namespace cli
