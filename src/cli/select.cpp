#include "commands.h"
#include "json_text.h"
#include "page.h"
#include "selectors.h"
#include "session.h"
#include "text.h"

namespace cli {

namespace {

using Show = SelectOptions::Show;

class Selecting {
 public:
  explicit Selecting(const SelectOptions& options)
      : options_(options), session_(options), json_("") {}

  int run() {
    return session_.run(options_.files, [this](Input& input) { return page(input); });
  }

 private:
  Found page(const Input& input) {
    const Document document = parse_page(input, options_.drop_comments);
    std::vector<_qo_html*> matches = find_matches(document.get(), options_.selector);
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
        for (_qo_html* node : matches) attributes(input, *node);
        return found;
      case Show::json:
        for (_qo_html* node : matches) session_.out().write(json(input, *node) + end());
        return found;
      default:
        for (_qo_html* node : matches) result(input, shown(*node));
        return found;
    }
  }

  std::string shown(_qo_html& node) const {
    switch (options_.show) {
      case Show::inner:
        return node.innerHTML();
      case Show::text:
        return node.textContent();
      default:
        return node.outerHTML();
    }
  }

  // A line with the values of the wanted attributes, for a node that has any of them.
  void attributes(const Input& input, _qo_html& node) {
    std::string line;
    bool any = false;
    for (const std::string& wanted : options_.attributes) {
      if (&wanted != &options_.attributes.front()) line += '\t';
      any = any || node.has_attribute(wanted);
      line += node.get_attribute(wanted);
    }
    if (any) result(input, line);
  }

  std::string json(const Input& input, _qo_html& node) {
    Json::Value line(Json::objectValue);
    Json::Value& attributes = line["attrs"] = Json::Value(Json::objectValue);
    for (const Attribute& attribute : node.attributes) {
      add_member(attributes, attribute.name) =
          attribute.hasValue != 0 ? json_string(attribute.value) : Json::Value(true);
    }
    line["tag"] = json_string(node.tagName());
    line["text"] = json_string(node.textContent());
    line["html"] = json_string(node.outerHTML());
    if (options_.with_name) line["file"] = json_string(input.name);
    return json_.write(line);
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
  JsonWriter json_;
};

}  // namespace

int run(const SelectOptions& options) {
  give_hints(options.selector, options.strict);
  return Selecting(options).run();
}

}  // namespace cli
