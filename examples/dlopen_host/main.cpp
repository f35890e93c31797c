// A host that loads the library when it needs it. The nodes' own operations are reached through
// functions that the host looks up by name, as it does for any library.
// usage: dlopen_host LIBRARY

#include <dlfcn.h>

#include <iostream>

#include <qo_html/qo_html.h>

extern long live_nodes;  // services.cpp

namespace {

// C++ names as the compiler spells them: `nm -D libqo_html.so` lists them.
constexpr char parse_html_symbol[] =
    "_Z9parseHtmlRP8_qo_htmlNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEES7_bb";
constexpr char outer_html_symbol[] = "_ZN8_qo_html9outerHTMLB5cxx11Ev";

}  // namespace

int main(int argc, char** argv) {
  // RTLD_NOW: a service or a jsoncpp function that is missing shows here, not in the first call.
  void* const library = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
  if (library == nullptr) {
    const char* const reason = dlerror();
    std::cerr << (reason != nullptr ? reason : "usage: dlopen_host LIBRARY") << std::endl;
    return 2;
  }
  const auto parse = reinterpret_cast<decltype(&parseHtml)>(dlsym(library, parse_html_symbol));
  using OuterHtml = std::string (*)(_qo_html*);  // how a member function is called here
  const auto outer_html = reinterpret_cast<OuterHtml>(dlsym(library, outer_html_symbol));

  _qo_html* document = nullptr;
  if (parse == nullptr || outer_html == nullptr ||
      !parse(document, "<p>one<br>two", "", false, false)) {
    return 1;
  }
  std::cout << outer_html(document) << ": " << live_nodes << " nodes" << std::endl;
  delete document;  // the destructor is virtual: the library's is called
  std::cout << live_nodes << " nodes are left" << std::endl;
  dlclose(library);
}
