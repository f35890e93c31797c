#include "commands.h"
#include "json_text.h"
#include "page.h"
#include "selectors.h"
#include "session.h"
#include "text.h"

namespace cli {

namespace {

// A control's value, or the values of several by position or key.
Json::Value valid_member(const Json::Value& value) {
  if (value.isString()) return json_string(value.asString());
  Json::Value valid(value.type());
  for (auto item = value.begin(); item != value.end(); ++item) {
    if (value.isArray()) {
      valid.append(json_string(item->asString()));
    } else {
      add_member(valid, item.name()) = json_string(item->asString());
    }
  }
  return valid;
}

Json::Value form_values(const Input& input, _qo_html& form) {
  Json::Value values;
  try {
    form.get_form_values(values);
  } catch (const Json::Exception&) {
    throw Failure(input.name + ": controls of one name are plain, in [] or in [key], not several");
  }
  Json::Value valid(Json::objectValue);
  for (auto member = values.begin(); member != values.end(); ++member) {
    add_member(valid, member.name()) = valid_member(*member);
  }
  return valid;
}

// The values of the first form, or of all in an array.
Json::Value result(const FormOptions& options, const Input& input,
                   const std::vector<_qo_html*>& forms) {
  if (!options.all) return form_values(input, *forms.front());
  Json::Value all(Json::arrayValue);
  for (_qo_html* form : forms) all.append(form_values(input, *form));
  return all;
}

}  // namespace

int run(const FormOptions& options) {
  give_hints(options.selector, options.strict);
  Session session(options);
  JsonWriter writer(options.compact ? "" : "  ");
  return session.run({options.file}, [&](Input& input) {
    const Document document = parse_page(input, options.drop_comments);
    const std::vector<_qo_html*> forms = find_matches(document.get(), options.selector);
    if (forms.empty() && !options.all) return Found::nothing;
    session.out().write(writer.write(result(options, input, forms)) + "\n");
    return forms.empty() ? Found::nothing : Found::something;
  });
}

}  // namespace cli
