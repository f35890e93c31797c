// What a browser sends for a form, the HTML standard's form data set, and what makes it send
// something else.
//
// The state is that of the markup, before anyone types or a script runs. Template code in names and
// values stays as written, and a value with code in it counts as one that fits.
//
// Errors: std::bad_alloc, Error for a null node or a node of another page, and what a function
// says.
//
// Threads: nothing is shared. One object may be asked by several threads at once.

#ifndef QO_PAGE_FORM_DATA_H
#define QO_PAGE_FORM_DATA_H

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <qo_page/edits.h>
#include <qo_page/page.h>

namespace qo {

// A name and a value, decoded. Line breaks are as a browser's FormData gives them: those of the
// source and of text areas are line feeds. A file has an empty value.
struct FormEntry {
  std::string name;
  std::string value;
};

// A button, input, select or textarea.
struct FormControl {
  Node node;
  std::string name;  // decoded; a control without one sends nothing
  std::string
      type;  // as scripts see it: "text", "checkbox", "select-one", "textarea", "submit", ...
  bool is_disabled;  // by itself or by a fieldset around it
  bool is_checked;   // of checkboxes, and of the one radio button of a group that is sent

  // What it sends; checkboxes, radio buttons and buttons when they are checked or pressed. Empty
  // for images, for buttons that send nothing, and where no option is selected.
  std::vector<std::string> values;
};

// What the controls of one name are to send, in the order in which they are sent. Where the values
// tell the controls apart, as those of checkboxes do, any order will do.
struct FieldValues {
  std::string name;
  std::vector<std::string> values;  // empty: nothing stays checked or selected
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
  // For an element that is not a form, that is what all controls below it would send, whatever form
  // owns them. `submitter` names the button that is pressed: the first one of that name that is not
  // disabled. It is NAME=VALUE where several buttons have that name, and empty for a button without
  // a name. No other button is sent.
  std::vector<FormEntry> entries(Node form,
                                 std::optional<std::string_view> submitter = std::nullopt) const;

  // Whether there is such a button to press.
  bool has_button(Node form, std::string_view submitter) const;

  // The controls that are looked at for `entries`, disabled ones and buttons included, in document
  // order. Those in a datalist, which are never sent, are left out.
  std::vector<FormControl> controls(Node form) const;

  // What makes the form send these values: operations on nodes, in document order, for Edits. What
  // has the values already is left alone, as are controls of other names, disabled ones and
  // buttons. A name that comes twice has the values of both.
  //
  // Inputs get a "value", textareas a text, and of checkboxes, radio buttons and options, those of
  // the values get "checked" or "selected", and the others lose it. A hidden input beside other
  // controls of its name stays; what it sends may be among the values or not.
  //
  // Throws Error, with the place of the node that it is about, when that cannot be exact: a name
  // has no control that can be set; a value is that of no control or option, of a disabled one, or
  // of several; there are more or fewer values than the controls take; an input of the type does
  // not take a value; or a value is to be the name of a file.
  std::vector<std::pair<Node, Operation>> fill(Node form,
                                               const std::vector<FieldValues>& values) const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// The entries as application/x-www-form-urlencoded: the query of a GET, the body of a POST.
QO_PAGE_API std::string urlencoded(const std::vector<FormEntry>& entries);

}  // namespace qo

#endif
