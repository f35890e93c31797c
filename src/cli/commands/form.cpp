#include <qo_page/form_data.h>

#include "commands/commands.h"
#include "commands/form_json.h"
#include "io/failure.h"
#include "io/json_text.h"
#include "io/text.h"
#include "page_view.h"
#include "session.h"

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

Json::Value host_values(_qo_html& form) {
  Json::Value values;
  try {
    form.get_form_values(values);
  } catch (const Json::Exception&) {
    throw Failure("controls of one name are plain, in [] or in [key], not several");
  }
  Json::Value valid(Json::objectValue);
  MemberNames names;
  for (auto member = values.begin(); member != values.end(); ++member) {
    valid[names.unique(member.name())] = valid_member(*member);
  }
  return valid;
}

class FormPrinter {
 public:
  explicit FormPrinter(const Options& options)
      : options_(options),
        session_(options),
        read_(make_reader(options, options.selector, qo::TextForm::decoded)) {}

  int run() {
    return session_.run([this](Input& input, Output& out) {
      try {
        return page(input, out);
      } catch (const Failure& failure) {
        throw Failure(input.name + ": " + failure.what());
      }
    });
  }

 private:
  Found page(Input& input, Output& out) {
    const std::unique_ptr<PageView> view = read_(input);
    const std::vector<_qo_html*> forms = view->matches(options_.all ? SIZE_MAX : 1);
    if (forms.empty() && !prints_empty_pages()) return Found::nothing;
    std::optional<qo::FormControls> controls;
    if (view->page() != nullptr) controls.emplace(*view->page());
    if (options_.form_shape == FormShape::urlencoded) {
      for (_qo_html* form : forms) print_line(input, qo::urlencoded(entries(*controls, form)), out);
    } else {
      print_json(input, forms, controls ? &*controls : nullptr, out);
    }
    return forms.empty() ? Found::nothing : Found::something;
  }

  // "[]" of the one page that was asked for.
  bool prints_empty_pages() const {
    return options_.all && options_.form_shape != FormShape::urlencoded && !session_.shows_names();
  }

  void print_json(const Input& input, const std::vector<_qo_html*>& forms,
                  const qo::FormControls* controls, Output& out) const {
    Json::Value result;
    if (options_.all) {
      result = Json::Value(Json::arrayValue);
      for (_qo_html* form : forms) result.append(values(controls, *form));
    } else {
      result = values(controls, *forms.front());
    }
    const bool one_line = options_.compact || session_.shows_names();
    if (session_.shows_names()) {
      Json::Value named(Json::objectValue);
      named["file"] = json_string(input.name);
      named["values"] = std::move(result);
      result = std::move(named);
    }
    out.write(JsonWriter(one_line ? "" : "  ").write(result) + "\n");
  }

  Json::Value values(const qo::FormControls* controls, _qo_html& form) const {
    if (controls == nullptr) return host_values(form);
    const std::vector<qo::FormEntry> found = entries(*controls, &form);
    return options_.form_shape == FormShape::pairs ? pairs_of(found) : nested_values(found);
  }

  std::vector<qo::FormEntry> entries(const qo::FormControls& controls, _qo_html* form) const {
    if (options_.submitter && !options_.all && !controls.has_button(form, *options_.submitter)) {
      throw Failure("the form has no button " + quoted(*options_.submitter, 60) + " to press");
    }
    return controls.entries(form, options_.submitter);
  }

  void print_line(const Input& input, std::string_view line, Output& out) const {
    if (session_.shows_names()) {
      out.paint("35", printable(input.name));
      out.paint("36", ":");
    }
    out.write(line);
    out.write("\n");
  }

  const Options& options_;
  Session session_;
  PageReader read_;
};

}  // namespace

int run_form(const Options& options) {
  return FormPrinter(options).run();
}

}  // namespace cli
