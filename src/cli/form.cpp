#include "commands.h"
#include "json_text.h"
#include "page_view.h"
#include "session.h"
#include "text.h"

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

Json::Value form_values(const std::string& file, _qo_html& form) {
  Json::Value values;
  try {
    form.get_form_values(values);
  } catch (const Json::Exception&) {
    throw Failure(file + ": controls of one name are plain, in [] or in [key], not several");
  }
  Json::Value valid(Json::objectValue);
  MemberNames names;
  for (auto member = values.begin(); member != values.end(); ++member) {
    valid[names.unique(member.name())] = valid_member(*member);
  }
  return valid;
}

// The values of the first form, or of all in an array.
Json::Value result(const FormOptions& options, const std::string& file,
                   const std::vector<_qo_html*>& forms) {
  if (!options.all) return form_values(file, *forms.front());
  Json::Value all(Json::arrayValue);
  for (_qo_html* form : forms) all.append(form_values(file, *form));
  return all;
}

}  // namespace

int run(const FormOptions& options) {
  const PageReader read = make_reader(options, options.selector, qo::TextForm::decoded);
  Session session(options);
  JsonWriter writer(options.compact ? "" : "  ");
  return session.run({options.file}, [&](Input& input) {
    const std::unique_ptr<PageView> view = read(input);
    const std::vector<_qo_html*> forms = view->matches();
    if (forms.empty() && !options.all) return Found::nothing;
    session.out().write(writer.write(result(options, input.name, forms)) + "\n");
    return forms.empty() ? Found::nothing : Found::something;
  });
}

}  // namespace cli
