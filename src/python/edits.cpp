#include "edits.h"

#include <optional>
#include <tuple>

#include <pybind11/stl.h>

#include "errors.h"
#include "strings.h"

namespace qo_python {

namespace {

using Kind = qo::Operation::Kind;

struct KindName {
  const char* name;
  Kind kind;
};

constexpr KindName kinds[] = {{"set_attribute", Kind::set_attribute},
                              {"set_bare_attribute", Kind::set_bare_attribute},
                              {"remove_attribute", Kind::remove_attribute},
                              {"add_class", Kind::add_class},
                              {"remove_class", Kind::remove_class},
                              {"rename", Kind::rename},
                              {"unwrap", Kind::unwrap},
                              {"set_text", Kind::set_text},
                              {"set_html", Kind::set_html},
                              {"prepend", Kind::prepend},
                              {"append", Kind::append},
                              {"insert_before", Kind::insert_before},
                              {"insert_after", Kind::insert_after},
                              {"wrap", Kind::wrap},
                              {"replace", Kind::replace},
                              {"remove", Kind::remove}};

Kind kind_named(const std::string& name) {
  for (const KindName& one : kinds) {
    if (one.name == name) return one.kind;
  }
  throw py::value_error("no operation is called '" + name + "'");
}

// Kind, name and value; both texts are empty where the kind does not use them.
using Parts = std::tuple<std::string, py::str, py::str>;

std::vector<qo::Node> nodes_of(const std::vector<const NodeHandle*>& handles) {
  std::vector<qo::Node> nodes;
  for (const NodeHandle* handle : handles) {
    if (handle == nullptr) throw py::type_error("a node is to be edited, not None");
    nodes.push_back(handle->node);
  }
  return nodes;
}

void add_to(EditLog& log, const std::vector<qo::Node>& nodes,
            const std::vector<qo::Operation>& operations) {
  unlocked(log.document().get(), [&] { log.add(nodes, operations); });
}

void add(EditLog& log, const std::vector<const NodeHandle*>& handles,
         const std::vector<Parts>& all_parts) {
  std::vector<qo::Operation> operations;
  for (const auto& [kind, name, value] : all_parts) {
    operations.push_back({kind_named(kind), from_str(name), from_str(value)});
  }
  add_to(log, nodes_of(handles), operations);
}

// In the values of attributes of the name, or without one in texts.
void substitute(EditLog& log, const std::vector<const NodeHandle*>& handles,
                const std::optional<py::str>& name, const py::str& pattern,
                const py::str& replacement) {
  const std::string from = from_str(pattern), to = from_str(replacement);
  const qo::Substitution substitution =
      unlocked(nullptr, [&] { return qo::Substitution(from, to); });
  add_to(log, nodes_of(handles),
         {name ? qo::substitute_value(from_str(*name), substitution)
               : qo::substitute_text(substitution)});
}

// What came of edits: the page before and after.
struct ResultHandle {
  DocumentPointer before, after;
  std::vector<qo::Change> changes;
  std::vector<Refusal> refused;
};

ResultHandle apply(EditLog& log, bool skips_refused) {
  const DocumentPointer& before = log.document();
  try {
    const py::gil_scoped_release release;
    AppliedEdits applied = log.apply(skips_refused);
    return {before, make_document(std::move(applied.edited.page), before->origin()),
            std::move(applied.edited.changes), std::move(applied.refused)};
  } catch (const qo::EditError& error) {
    raise_refused(refusal(error, before, error.node()));
  } catch (const qo::Error& error) {
    raise_refused(refusal(error, before, qo::Node()));
  }
}

py::list changes_of(const ResultHandle& own) {
  py::list list;
  for (const qo::Change& change : own.changes) {
    list.append(py::make_tuple(py::make_tuple(change.old_begin, change.old_end),
                               py::make_tuple(change.new_begin, change.new_end),
                               handle_of(own.before, change.node)));
  }
  return list;
}

py::list refused_of(const ResultHandle& own) {
  py::list list;
  for (const Refusal& one : own.refused) list.append(refusal(one.error, own.before, one.node));
  return list;
}

}  // namespace

void add_edits(py::module_& module) {
  py::class_<EditLog>(module, "EditLog", py::custom_type_setup(refuse_new))
      .def("add", add)
      .def("substitute", substitute)
      .def("apply", apply);
  module.def("edit_log", [](const PageHandle& page, bool keeps_code) {
    return std::make_unique<EditLog>(page.document,
                                     keeps_code ? qo::CodeInText::keep : qo::CodeInText::refuse);
  });
  py::class_<ResultHandle>(module, "AppliedEdits", py::custom_type_setup(refuse_new))
      .def_property_readonly("page",
                             [](const ResultHandle& own) {
                               return handle_of(own.after, own.after->page().document());
                             })
      .def_property_readonly("is_changed",
                             [](const ResultHandle& own) { return !own.changes.empty(); })
      .def("changes", changes_of)
      .def("refused", refused_of);
}

}  // namespace qo_python
