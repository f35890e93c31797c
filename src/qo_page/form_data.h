// What a browser sends for a form: the HTML standard's form data set.
//
// The state is that of the markup, before anyone types or a script runs. Template code in names and
// values stays as written, and a value with code in it is taken for a fitting one.
//
// Errors: std::bad_alloc alone.
//
// Threads: nothing is shared. One object may be asked by several threads at once.

#ifndef QO_PAGE_FORM_DATA_H
#define QO_PAGE_FORM_DATA_H

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <qo_page/page.h>

namespace qo {

// A name and a value, decoded. Line breaks are as a browser's FormData gives them: those of the
// source and of text areas are line feeds. A file has an empty value.
struct FormEntry {
  std::string name;
  std::string value;
};

// The controls of a page, by the form that owns them: the one that their "form" attribute names, or
// else the one around them. The page must live as long.
class QO_PAGE_API FormControls {
 public:
  // Time grows with the page.
  explicit FormControls(const Page& page);
  ~FormControls();
  FormControls(FormControls&&) noexcept;
  FormControls& operator=(FormControls&&) noexcept;

  // What is sent for `form`, in document order; `form` is an element of the page, or its document.
  // For one that is no form, that is what all controls below it would send, whatever form owns
  // them. `submitter` is the name of the button that is pressed, the first one of that name that is
  // not disabled, or NAME=VALUE where several have that name; an empty name is that of a button
  // without one. No other button is sent.
  std::vector<FormEntry> entries(Node form,
                                 std::optional<std::string_view> submitter = std::nullopt) const;

  // Whether there is such a button to press.
  bool has_button(Node form, std::string_view submitter) const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// The entries as application/x-www-form-urlencoded: the query of a GET, the body of a POST.
QO_PAGE_API std::string urlencoded(const std::vector<FormEntry>& entries);

}  // namespace qo

#endif
