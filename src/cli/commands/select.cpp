#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <qo_page/selector.h>

#include "commands/columns.h"
#include "commands/commands.h"
#include "commands/fields.h"
#include "commands/own_selector.h"
#include "host/host_matches.h"
#include "io/cells.h"
#include "io/text.h"
#include "pages/own_matches.h"
#include "pages/read_page.h"
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
        selector_(own_selector(options)),
        columns_(options),
        fields_(options.fields) {
    if (fields_.empty()) fields_ = default_fields(options.host, session_.shows_names());
    check_fields("select: --fields", fields_, options.host);
  }

  int run() {
    const int status = session_.run([this](Input& input, Output& out) { return page(input, out); });
    for (const std::string& name : columns_.missing()) {
      const bool is_near = is_field(name);
      complain("no match has an attribute " + quoted(name, 60) +
               (is_near ? "; did you mean " + quoted(":" + name, 60) + "?" : ""));
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

  std::unique_ptr<Matches> read(Input& input) const {
    if (options_.host) return std::make_unique<HostMatches>(input, options_, most());
    return std::make_unique<OwnMatches>(read_page(input, options_), *selector_, most(),
                                        text_form(options_));
  }

  Found page(Input& input, Output& out) {
    const std::unique_ptr<Matches> matches = read(input);
    const bool is_empty = matches->size() == 0;
    const Found found = is_empty ? Found::nothing : Found::something;
    switch (*options_.show) {
      case Show::nothing:
        return is_empty ? Found::nothing : Found::enough;
      case Show::count:
        if (session_.shows_names()) write_name(shown_name(input), ":", out);
        out.write(std::to_string(matches->size()) + end());
        return found;
      case Show::names:
      case Show::names_without:
        if (is_empty != (options_.show == Show::names_without)) return Found::nothing;
        write_name(shown_name(input), "", out);
        out.write(end());
        return Found::something;
      default:
        print(input, *matches, out);
        return found;
    }
  }

  void print(const Input& input, Matches& matches, Output& out) const {
    FieldWriter writer(input.name, matches);
    const std::string name = shown_name(input);
    std::string buffer;
    for (std::size_t match = 0; match < matches.size(); ++match) {
      const std::optional<std::string_view> shown = result(writer, matches, match, buffer);
      if (!shown) continue;
      if (options_.csv) {
        write_first_cells(input, matches, match, out);
      } else if (options_.show != Show::json) {
        write_prefix(name, matches, match, out);
      }
      out.write(*shown);
      out.write(end());
      if (options_.first_only) return;
    }
  }

  // What is in front of a result, as grep has it.
  void write_prefix(const std::string& name, Matches& matches, std::size_t match,
                    Output& out) const {
    if (session_.shows_names()) write_name(name, ":", out);
    if (!options_.line_numbers) return;
    out.paint("32", std::to_string(matches.position(match).line));
    out.paint("36", ":");
  }

  void write_first_cells(const Input& input, Matches& matches, std::size_t match,
                         Output& out) const {
    std::string cells;
    if (session_.shows_names()) append_cell(input.name, true, CellForm::commas, cells);
    if (options_.line_numbers) {
      append_cell(std::to_string(matches.position(match).line), cells.empty(), CellForm::commas,
                  cells);
    }
    if (cells.empty()) return;
    out.write(cells);
    out.write(",");
  }

  // A view of the page or of `buffer`.
  std::optional<std::string_view> result(FieldWriter& writer, const Matches& matches,
                                         std::size_t match, std::string& buffer) const {
    switch (*options_.show) {
      case Show::json:
        return buffer = writer.line(match, fields_);
      case Show::columns:
        if (!columns_.write(writer, match, buffer)) return std::nullopt;
        return buffer;
      case Show::inner:
        return matches.inner_html(match, buffer);
      case Show::text:
        return matches.text(match, buffer);
      default:
        return matches.html(match, buffer);
    }
  }

  std::string shown_name(const Input& input) const {
    return options_.end_with_nul ? input.name : printable(input.name);
  }

  static void write_name(std::string_view name, std::string_view separator, Output& out) {
    out.paint("35", name);
    out.paint("36", separator);
  }

  std::string end() const { return std::string(1, options_.end_with_nul ? '\0' : '\n'); }

  const Options& options_;
  Session session_;
  std::optional<qo::Selector> selector_;
  Columns columns_;
  std::vector<std::string> fields_;
};

}  // namespace

int run_select(const Options& options) {
  return Selecting(options).run();
}

}  // namespace cli
