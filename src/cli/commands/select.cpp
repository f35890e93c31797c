#include "commands/columns.h"
#include "commands/commands.h"
#include "commands/fields.h"
#include "io/cells.h"
#include "io/text.h"
#include "page_view.h"
#include "session.h"

namespace cli {

namespace {

qo::TextForm text_form(const Options& options) {
  if (options.raw) return qo::TextForm::written;
  return options.squeeze ? qo::TextForm::readable : qo::TextForm::decoded;
}

class Selecting {
 public:
  explicit Selecting(const Options& options)
      : options_(options),
        session_(options),
        read_(make_reader(options, options.selector, text_form(options))),
        columns_(options),
        fields_(options.fields) {
    if (fields_.empty()) fields_ = default_fields(options.host, session_.shows_names());
    check_fields("select: --fields", fields_, options.host);
  }

  int run() {
    const int status = session_.run([this](Input& input, Output& out) { return page(input, out); });
    for (const std::string& name : columns_.missing()) {
      complain("no match has an attribute " + quoted(name, 60));
    }
    return status;
  }

 private:
  // How many matches of a page are of interest.
  std::size_t most() const {
    switch (*options_.show) {
      case Show::names:
      case Show::names_without:
      case Show::nothing:
        return 1;
      default:
        // Not every match gives a line of columns.
        return options_.first_only && options_.show != Show::columns ? 1 : SIZE_MAX;
    }
  }

  Found page(Input& input, Output& out) {
    const std::unique_ptr<PageView> view = read_(input);
    std::vector<_qo_html*> matches = view->matches(most());
    if (matches.size() > most()) matches.resize(most());
    const Found found = matches.empty() ? Found::nothing : Found::something;
    switch (*options_.show) {
      case Show::nothing:
        return matches.empty() ? Found::nothing : Found::enough;
      case Show::count:
        if (session_.shows_names()) name(input, ":", out);
        out.write(std::to_string(matches.size()) + end());
        return found;
      case Show::names:
      case Show::names_without:
        if (matches.empty() != (options_.show == Show::names_without)) return Found::nothing;
        name(input, "", out);
        out.write(end());
        return Found::something;
      default:
        print(input, *view, matches, out);
        return found;
    }
  }

  void print(const Input& input, const PageView& view, const std::vector<_qo_html*>& matches,
             Output& out) const {
    FieldWriter writer(input.name, view);
    for (_qo_html* node : matches) {
      const std::optional<std::string> shown = result(writer, view, node);
      if (!shown) continue;
      if (options_.csv) {
        write_first_cells(input, writer, node, out);
      } else if (options_.show != Show::json) {
        write_prefix(input, writer, node, out);
      }
      out.write(*shown);
      out.write(end());
      if (options_.first_only) return;
    }
  }

  // What is in front of a result, as grep has it.
  void write_prefix(const Input& input, FieldWriter& writer, _qo_html* node, Output& out) const {
    if (session_.shows_names()) name(input, ":", out);
    if (!options_.line_numbers) return;
    out.paint("32", std::to_string(writer.place(node).line));
    out.paint("36", ":");
  }

  void write_first_cells(const Input& input, FieldWriter& writer, _qo_html* node,
                         Output& out) const {
    std::string cells;
    if (session_.shows_names()) append_cell(input.name, true, CellForm::commas, cells);
    if (options_.line_numbers) {
      append_cell(std::to_string(writer.place(node).line), cells.empty(), CellForm::commas, cells);
    }
    out.write(cells.empty() ? cells : cells + ",");
  }

  std::optional<std::string> result(FieldWriter& writer, const PageView& view,
                                    _qo_html* node) const {
    switch (*options_.show) {
      case Show::json:
        return writer.line(node, fields_);
      case Show::columns:
        return columns_.line(writer, view, node);
      case Show::inner:
        return view.inner_html(node);
      case Show::text:
        return view.text(node);
      default:
        return view.html(node);
    }
  }

  void name(const Input& input, std::string_view separator, Output& out) const {
    out.paint("35", options_.end_with_nul ? input.name : printable(input.name));
    out.paint("36", separator);
  }

  std::string end() const { return std::string(1, options_.end_with_nul ? '\0' : '\n'); }

  const Options& options_;
  Session session_;
  PageReader read_;
  Columns columns_;
  std::vector<std::string> fields_;
};

}  // namespace

int run_select(const Options& options) {
  return Selecting(options).run();
}

}  // namespace cli
