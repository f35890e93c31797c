#include <string>

#include "document.h"
#include "nodes.h"
#include "strings.h"

namespace qo_python {

namespace {

// An attribute and the page that it keeps.
struct AttributeHandle {
  DocumentPointer document;
  qo::Attribute attribute;
};

py::tuple tuple_of(qo::Range range) {
  return py::make_tuple(range.begin, range.end);
}

py::list attributes_of(const NodeHandle& node) {
  py::list list;
  for (const qo::Attribute attribute : node.node.attributes()) {
    list.append(py::cast(AttributeHandle{node.document, attribute}));
  }
  return list;
}

py::str quote_of(const AttributeHandle& own) {
  const char quote = own.attribute.quote();
  return to_str(quote == '\0' ? std::string() : std::string(1, quote));
}

}  // namespace

void add_attributes(py::module_& module) {
  py::class_<AttributeHandle>(module, "Attribute", py::custom_type_setup(refuse_new))
      .def_property_readonly(
          "name", [](const AttributeHandle& own) { return to_str(own.attribute.name()); })
      .def_property_readonly(
          "value", [](const AttributeHandle& own) { return to_str(own.attribute.value()); })
      .def_property_readonly("written",
                             [](const AttributeHandle& own) {
                               return to_str(own.attribute.value(qo::TextForm::written));
                             })
      .def_property_readonly("has_value",
                             [](const AttributeHandle& own) { return own.attribute.has_value(); })
      .def_property_readonly("quote", quote_of)
      .def_property_readonly(
          "span", [](const AttributeHandle& own) { return tuple_of(own.attribute.range()); })
      .def_property_readonly(
          "name_span",
          [](const AttributeHandle& own) { return tuple_of(own.attribute.name_range()); })
      .def_property_readonly("value_span", [](const AttributeHandle& own) {
        return tuple_of(own.attribute.value_range());
      });
  module.def("attributes_of", attributes_of);
}

}  // namespace qo_python
