#include "host/host_forms.h"

#include "host/host_matches.h"
#include "io/failure.h"
#include "io/json_text.h"

namespace cli {

namespace {

// A control's value, or the values of several by position or key.
Json::Value valid_member(const Json::Value& value) {
  if (value.isString()) return json_string(value.asString());
  Json::Value valid(value.type());
  MemberNames names;
  for (auto item = value.begin(); item != value.end(); ++item) {
    if (value.isArray()) {
      valid.append(json_string(item->asString()));
    } else {
      valid[names.unique(item.name())] = json_string(item->asString());
    }
  }
  return valid;
}

Json::Value values_of(_qo_html& form) {
  Json::Value values;
  try {
    form.get_form_values(values);
  } catch (const Json::Exception&) {
    throw Failure("controls of one name are plain, in [] or in [key], not several");
  }
  require_memory();
  Json::Value valid(Json::objectValue);
  MemberNames names;
  for (auto member = values.begin(); member != values.end(); ++member) {
    valid[names.unique(member.name())] = valid_member(*member);
  }
  return valid;
}

}  // namespace

std::vector<Json::Value> host_form_values(const Input& input, const Options& options,
                                          std::size_t most) {
  const HostMatches forms(input, options, most);
  std::vector<Json::Value> values;
  for (std::size_t i = 0; i < forms.size(); ++i) values.push_back(values_of(forms[i]));
  return values;
}

}  // namespace cli
