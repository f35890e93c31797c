#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <pybind11/stl.h>

#include <qo_page/form_data.h>

#include "document.h"
#include "edits.h"
#include "errors.h"
#include "strings.h"
#include "tables.h"

namespace qo_python {

namespace {

// The controls of a page, and the page that they keep.
struct FormsHandle {
  DocumentPointer document;
  qo::FormControls controls;
};

FormsHandle read_forms(const PageHandle& page) {
  return unlocked(page.document.get(), [&] {
    return FormsHandle{page.document, qo::FormControls(page.document->page())};
  });
}

std::vector<qo::FormEntry> entries(const FormsHandle& own, const NodeHandle& form,
                                   const std::optional<py::str>& submitter) {
  std::optional<std::string> button;
  if (submitter) button = from_str(*submitter);
  if (button && !own.controls.has_button(form.node, *button)) {
    throw py::value_error("the form has no such button to press: " + *button);
  }
  return unlocked(own.document.get(), [&] { return own.controls.entries(form.node, button); });
}

py::list data_of(const FormsHandle& own, const NodeHandle& form,
                 const std::optional<py::str>& submitter) {
  py::list list;
  for (const qo::FormEntry& entry : entries(own, form, submitter)) {
    list.append(py::make_tuple(to_str(entry.name), to_str(entry.value)));
  }
  return list;
}

using Values = std::vector<std::pair<py::str, std::vector<py::str>>>;

// Adds to the edits what makes the form send the values.
void fill(const FormsHandle& own, const NodeHandle& form, const Values& values, EditLog& edits) {
  std::vector<qo::FieldValues> fields;
  for (const auto& [name, wanted] : values) {
    fields.push_back({from_str(name), {}});
    for (const py::str& value : wanted) fields.back().values.push_back(from_str(value));
  }
  unlocked(own.document.get(), [&] {
    for (const auto& [node, operation] : own.controls.fill(form.node, fields)) {
      edits.add({node}, {operation});
    }
  });
}

}  // namespace

void add_forms(py::module_& module) {
  py::class_<FormsHandle>(module, "FormControls", py::custom_type_setup(refuse_new))
      .def("data", data_of)
      .def("urlencoded",
           [](const FormsHandle& own, const NodeHandle& form,
              const std::optional<py::str>& submitter) {
             return to_str(qo::urlencoded(entries(own, form, submitter)));
           })
      .def("fill", fill);
  module.def("read_forms", read_forms);
}

}  // namespace qo_python
