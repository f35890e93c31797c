#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <pybind11/stl.h>

#include <string>
#include <vector>
#include "document.h"
#include "errors.h"
#include "nodes.h"

#include <pybind11/stl.h>

#include "strings.h"

namespace qo_python {

namespace {

PageHandle read(const py::bytes& source, const std::optional<py::str>& path,
                const std::string& dialect, const std::string& encoding) {
  const qo::PageOptions options = options_of(dialect);
  Origin origin{dialect, encoding, std::nullopt};
  if (path) origin.path = from_str(*path);
  const auto text = static_cast<std::string_view>(source);
  DocumentPointer document = unlocked(nullptr, [&] {
    return make_document(qo::Page(std::string(text), options), std::move(origin));
  });
  const qo::Node root = document->page().document();
  return {{std::move(document), root}};
}

py::object path_of(const PageHandle& own) {
  const std::optional<std::string>& path = own.document->origin().path;
  return path ? py::object(to_str(*path)) : py::none();
}

// Python asks for this while it holds the page.
py::buffer_info buffer_of(const PageHandle& own) {
  const std::string& source = own.document->page().source();
  return {const_cast<char*>(source.data()), 1, py::format_descriptor<unsigned char>::format(),
          static_cast<py::ssize_t>(source.size()), true};
}

py::object data_of(const py::object& own) {
  return py::memoryview(py::buffer(own));
}

py::object node_at(const PageHandle& own, std::size_t index) {
  if (index >= own.document->page().node_count()) throw py::index_error("no node has that number");
  return handle_of(own.document, own.document->page().node_at(index));
}

}  // namespace

void add_pages(py::module_& module) {
  py::class_<PageHandle, NodeHandle>(module, "Page", py::buffer_protocol(),
                                     py::custom_type_setup(refuse_new))
      .def_buffer(buffer_of)
      .def_property_readonly("data", data_of)
      .def_property_readonly("_path", path_of)
      .def_property_readonly(
          "dialect", [](const PageHandle& own) { return to_str(own.document->origin().dialect); })
      .def_property_readonly(
          "encoding", [](const PageHandle& own) { return to_str(own.document->origin().encoding); })
      .def("node_at", node_at, py::arg("index"));
  module.def("read", read);
  module.def("dialect_of", [](const py::str& path, const py::bytes& source) {
    return std::string(qo::dialect_of(from_str(path), static_cast<std::string_view>(source)));
  });
  module.def("endings", [] {
    std::vector<std::string> endings;
    for (const qo::DialectInfo& row : qo::dialects()) endings.emplace_back(row.endings);
    return endings;
  });
}

}  // namespace qo_python
