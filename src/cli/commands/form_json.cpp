#include "commands/form_json.h"

#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "io/json_text.h"
#include "io/text.h"

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
Json::Value& item(Json::Value& container, const std::string& key) {
  if (key.empty()) {
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

namespace {

struct KeyedEntry {
  const qo::FormEntry* entry;
  std::vector<std::string> keys;  // after the base
};

// The member of one base, from all entries of that base. Throws when these contradict each other.
Json::Value nested_member(const std::vector<KeyedEntry>& entries) {
  Json::Value member;
  for (const KeyedEntry& keyed : entries) {
    Json::Value* place = &member;
    for (const std::string& key : keyed.keys) place = &item(*place, key);
    put(*place, keyed.entry->value);
  }
  return member;
}

}  // namespace

Json::Value nested_values(const std::vector<qo::FormEntry>& entries) {
  std::map<std::string, std::vector<KeyedEntry>> by_base;
  for (const qo::FormEntry& entry : entries) {
    std::vector<std::string> keys = keys_of(entry.name);
    const std::string base = valid_utf8(keys.front());
    keys.erase(keys.begin());
    by_base[base].push_back({&entry, std::move(keys)});
  }
  Json::Value values(Json::objectValue);
  for (const auto& [base, keyed] : by_base) {
    try {
      values[base] = nested_member(keyed);
    } catch (const Json::Exception&) {
      for (const KeyedEntry& each : keyed) {
        put(values[valid_utf8(each.entry->name)], each.entry->value);
      }
    }
  }
  return values;
}

}  // namespace cli
