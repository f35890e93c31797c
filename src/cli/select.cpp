#include "commands.h"
#include "fields.h"
#include "page_view.h"
#include "session.h"
#include "text.h"

namespace cli {

namespace {

using Show = SelectOptions::Show;

class Selecting {
 public:
  explicit Selecting(const SelectOptions& options)
      : options_(options),
        session_(options),
        read_(make_reader(options, options.selector,
                          options.raw ? qo::TextForm::written : qo::TextForm::decoded)),
        fields_(options.fields) {
    if (fields_.empty()) fields_ = default_fields(options.host, options.with_name);
    check_fields(fields_, options.host);
  }

  int run() {
    return session_.run(options_.files, [this](Input& input) { return page(input); });
  }

 private:
  Found page(Input& input) {
    const std::unique_ptr<PageView> view = read_(input);
    std::vector<_qo_html*> matches = view->matches();
    if (options_.first_only && matches.size() > 1) matches.resize(1);
    const Found found = matches.empty() ? Found::nothing : Found::something;
    switch (options_.show) {
      case Show::nothing:
        return matches.empty() ? Found::nothing : Found::enough;
      case Show::count:
        result(input, std::to_string(matches.size()));
        return found;
      case Show::names:
        if (matches.empty()) return found;
        name(input, "");
        session_.out().write(end());
        return found;
      case Show::attributes:
        for (_qo_html* node : matches) attributes(input, *view, node);
        return found;
      case Show::json:
        json(input, *view, matches);
        return found;
      default:
        for (_qo_html* node : matches) result(input, shown(*view, node));
        return found;
    }
  }

  std::string shown(const PageView& view, _qo_html* node) const {
    switch (options_.show) {
      case Show::inner:
        return view.inner_html(node);
      case Show::text:
        return view.text(node);
      default:
        return view.html(node);
    }
  }

  // A line with the values of the wanted attributes, for a node that has any of them.
  void attributes(const Input& input, const PageView& view, _qo_html* node) {
    std::string line;
    bool any = false;
    for (const std::string& wanted : options_.attributes) {
      if (&wanted != &options_.attributes.front()) line += '\t';
      const std::optional<std::string> value = view.attribute(node, wanted);
      any = any || value;
      line += value.value_or("");
    }
    if (any) result(input, line);
  }

  void json(const Input& input, const PageView& view, const std::vector<_qo_html*>& matches) {
    const LineIndex lines(view.source());
    const FieldWriter writer(fields_, input.name, view, lines);
    for (_qo_html* node : matches) session_.out().write(writer.line(node) + end());
  }

  void result(const Input& input, std::string_view text) {
    if (options_.with_name) name(input, ":");
    session_.out().write(text);
    session_.out().write(end());
  }

  void name(const Input& input, std::string_view separator) {
    session_.out().paint("35", input.name);
    session_.out().paint("36", separator);
  }

  std::string end() const { return std::string(1, options_.end_with_nul ? '\0' : '\n'); }

  const SelectOptions& options_;
  Session session_;
  PageReader read_;
  std::vector<std::string> fields_;
};

}  // namespace

int run(const SelectOptions& options) {
  return Selecting(options).run();
}

}  // namespace cli
