#include "nodes.h"

#include <functional>
#include <string>
#include <vector>

#include "document.h"
#include "errors.h"
#include "selectors.h"
#include "strings.h"

namespace qo_python {

namespace {

const char* name_of(qo::NodeKind kind) {
  constexpr const char* names[] = {"document", "element", "text", "comment",
                                   "doctype",  "cdata",   "code"};
  return names[static_cast<std::size_t>(kind)];
}

struct FormName {
  const char* name;
  qo::TextForm form;
};

constexpr FormName forms[] = {{"decoded", qo::TextForm::decoded},
                              {"written", qo::TextForm::written},
                              {"readable", qo::TextForm::readable}};

qo::TextForm form_named(const std::string& name) {
  for (const FormName& one : forms) {
    if (one.name == name) return one.form;
  }
  throw py::value_error("no form of text is called '" + name +
                        "'; there are: decoded, written, readable");
}

py::str text_of(const NodeHandle& own, const std::string& form_name) {
  const qo::TextForm form = form_named(form_name);
  return to_str(unlocked(own.document.get(), [&] { return own.node.text(form); }));
}

template <class Nodes>
py::list list_of(const DocumentPointer& document, const Nodes& nodes) {
  py::list list;
  for (const qo::Node node : nodes) list.append(handle_of(document, node));
  return list;
}

py::list selected(const NodeHandle& own, const py::object& selector, py::ssize_t limit) {
  if (limit < 0) throw py::value_error("a limit is not below 0");
  const qo::Selector read = selector_of(selector);
  const std::vector<qo::Node> found = unlocked(
      own.document.get(), [&] { return read.select(own.node, static_cast<std::size_t>(limit)); });
  py::list list(found.size());
  for (std::size_t i = 0; i < found.size(); ++i) list[i] = handle_of(own.document, found[i]);
  return list;
}

py::object first(const NodeHandle& own, const py::object& selector) {
  const qo::Selector read = selector_of(selector);
  const std::vector<qo::Node> found =
      unlocked(own.document.get(), [&] { return read.select(own.node, 1); });
  return found.empty() ? py::none() : handle_of(own.document, found.front());
}

py::object closest(const NodeHandle& own, const py::object& selector) {
  const qo::Selector read = selector_of(selector);
  const qo::Node found =
      unlocked(own.document.get(), [&] { return own.document->page().closest(own.node, read); });
  return handle_of(own.document, found);
}

bool matches(const NodeHandle& own, const py::object& selector) {
  const qo::Selector read = selector_of(selector);
  return unlocked(own.document.get(), [&] { return read.matches(own.node); });
}

py::object value_or(const NodeHandle& own, const py::str& name, const py::object& otherwise) {
  const std::optional<std::string> value = own.node.attribute(from_str(name));
  return value ? py::object(to_str(*value)) : otherwise;
}

py::str value_of(const NodeHandle& own, const py::str& name) {
  const std::optional<std::string> value = own.node.attribute(from_str(name));
  if (value) return to_str(*value);
  PyErr_SetObject(PyExc_KeyError, name.ptr());
  throw py::error_already_set();
}

py::tuple span_of(const NodeHandle& own) {
  const qo::Extent extent = own.node.extent();
  return py::make_tuple(extent.begin, extent.end);
}

py::tuple position_of(const NodeHandle& own) {
  const qo::Position position = own.document->position(own.node.extent().begin);
  return py::make_tuple(position.line, position.column);
}

// The nodes below one, each made when it is asked for.
class Walk {
 public:
  explicit Walk(const NodeHandle& top)
      : document_(top.document),
        next_(top.node.descendants().begin()),
        end_(top.node.descendants().end()) {}

  py::object next() {
    if (next_ == end_) throw py::stop_iteration();
    return handle_of(document_, *next_++);
  }

 private:
  DocumentPointer document_;
  qo::NodeRange<qo::NextInDocument>::Iterator next_, end_;
};

void add_places(py::class_<NodeHandle>& node) {
  node.def_property_readonly("page",
                             [](const NodeHandle& own) {
                               return handle_of(own.document, own.document->page().document());
                             })
      .def_property_readonly("index", [](const NodeHandle& own) { return own.node.index(); })
      .def_property_readonly("span", span_of)
      .def_property_readonly("position", position_of)
      .def_property_readonly(
          "parent",
          [](const NodeHandle& own) { return handle_of(own.document, own.node.parent()); })
      .def_property_readonly(
          "children",
          [](const NodeHandle& own) { return list_of(own.document, own.node.children()); })
      .def_property_readonly(
          "next",
          [](const NodeHandle& own) { return handle_of(own.document, own.node.next_sibling()); })
      .def_property_readonly("previous",
                             [](const NodeHandle& own) {
                               return handle_of(own.document, own.node.previous_sibling());
                             })
      .def("ancestors",
           [](const NodeHandle& own) { return list_of(own.document, own.node.ancestors()); })
      .def("walk", [](const NodeHandle& own) { return Walk(own); });
}

void add_comparisons(py::class_<NodeHandle>& node) {
  node.def(
          "__eq__", [](const NodeHandle& a, const NodeHandle& b) { return a.node == b.node; },
          py::is_operator())
      .def(
          "__lt__", [](const NodeHandle& a, const NodeHandle& b) { return a.node < b.node; },
          py::is_operator())
      .def(
          "__gt__", [](const NodeHandle& a, const NodeHandle& b) { return a.node > b.node; },
          py::is_operator())
      .def(
          "__le__", [](const NodeHandle& a, const NodeHandle& b) { return a.node <= b.node; },
          py::is_operator())
      .def(
          "__ge__", [](const NodeHandle& a, const NodeHandle& b) { return a.node >= b.node; },
          py::is_operator())
      .def("__hash__", [](const NodeHandle& own) { return std::hash<qo::Node>()(own.node); });
}

}  // namespace

void add_nodes(py::module_& module) {
  py::class_<Walk>(module, "Walk", py::custom_type_setup(refuse_new))
      .def("__iter__", [](const py::object& own) { return own; })
      .def("__next__", &Walk::next);
  py::class_<NodeHandle> node(module, "Node", py::custom_type_setup(refuse_new));
  node.def_property_readonly("kind", [](const NodeHandle& own) { return name_of(own.node.kind()); })
      .def_property_readonly("name", [](const NodeHandle& own) { return to_str(own.node.name()); })
      .def_property_readonly("html", [](const NodeHandle& own) { return to_str(own.node.html()); })
      .def_property_readonly("inner_html",
                             [](const NodeHandle& own) { return to_str(own.node.inner_html()); })
      .def_property_readonly("text", [](const NodeHandle& own) { return text_of(own, "decoded"); })
      .def("get_text", text_of, py::arg("form") = "decoded")
      .def("__getitem__", value_of)
      .def("get", value_or, py::arg("name"), py::arg("default") = py::none())
      .def("__contains__",
           [](const NodeHandle& own, const py::str& name) {
             return own.node.attribute(from_str(name)).has_value();
           })
      .def("select", selected, py::arg("selector"), py::arg("limit") = PY_SSIZE_T_MAX)
      .def("first", first, py::arg("selector"))
      .def("closest", closest, py::arg("selector"))
      .def("matches", matches, py::arg("selector"));
  node.attr("__iter__") = py::none();  // asking for node[0], node[1], ... makes no sense
  add_places(node);
  add_comparisons(node);
}

}  // namespace qo_python
