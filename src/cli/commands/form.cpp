#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <qo_page/form_data.h>
#include <qo_page/selector.h>

#include "commands/commands.h"
#include "commands/form_json.h"
#include "commands/own_selector.h"
#include "host/host_forms.h"
#include "io/failure.h"
#include "io/json_text.h"
#include "io/text.h"
#include "pages/read_page.h"
#include "session.h"

namespace cli {

namespace {

class FormPrinter {
 public:
  explicit FormPrinter(const Options& options)
      : options_(options), session_(options), selector_(own_selector(options)) {}

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
    const std::size_t most = options_.all ? SIZE_MAX : 1;
    if (options_.host) return print_json(input, host_form_values(input, options_, most), out);
    const qo::Page page = read_page(input, options_);
    const std::vector<qo::Node> forms = page.select(*selector_, most);
    if (forms.empty()) return print_json(input, {}, out);
    const qo::FormControls controls(page);
    if (options_.form_shape != FormShape::urlencoded) {
      return print_json(input, values(controls, forms), out);
    }
    for (const qo::Node form : forms) {
      print_line(input, qo::urlencoded(entries(controls, form)), out);
    }
    return Found::something;
  }

  // "[]" of the one page that was asked for.
  bool prints_empty_pages() const {
    return options_.all && options_.form_shape != FormShape::urlencoded && !session_.shows_names();
  }

  // `forms`: the values of each.
  Found print_json(const Input& input, std::vector<Json::Value> forms, Output& out) const {
    if (forms.empty() && !prints_empty_pages()) return Found::nothing;
    Json::Value result(Json::arrayValue);
    if (options_.all) {
      for (Json::Value& form : forms) result.append(std::move(form));
    } else {
      result = std::move(forms.front());
    }
    const bool one_line = options_.compact || session_.shows_names();
    if (session_.shows_names()) {
      Json::Value named(Json::objectValue);
      named["file"] = json_string(input.name);
      named["values"] = std::move(result);
      result = std::move(named);
    }
    out.write(JsonWriter(one_line ? "" : "  ").write(result) + "\n");
    return forms.empty() ? Found::nothing : Found::something;
  }

  std::vector<Json::Value> values(const qo::FormControls& controls,
                                  const std::vector<qo::Node>& forms) const {
    std::vector<Json::Value> all;
    for (const qo::Node form : forms) {
      const std::vector<qo::FormEntry> found = entries(controls, form);
      all.push_back(options_.form_shape == FormShape::pairs ? pairs_of(found)
                                                            : nested_values(found));
    }
    return all;
  }

  std::vector<qo::FormEntry> entries(const qo::FormControls& controls, qo::Node form) const {
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
  std::optional<qo::Selector> selector_;
};

}  // namespace

int run_form(const Options& options) {
  return FormPrinter(options).run();
}

}  // namespace cli
