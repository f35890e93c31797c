#include <dlfcn.h>

#include <iostream>

#include <qo_html/qo_html.h>

int main(int argc, char** argv) {
  void* const library = argc == 2 ? dlopen(argv[1], RTLD_NOW) : nullptr;
  if (library == nullptr) {
    const char* const reason = dlerror();
    std::cerr << (reason != nullptr ? reason : "usage: dlopen_host LIBRARY") << std::endl;
    return 1;
  }
  const char* const mangled = "_Z9parseHtmlRP8_qo_htmlNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEES7_bb";
  const auto parse = reinterpret_cast<decltype(&parseHtml)>(dlsym(library, mangled));
  _qo_html* document = nullptr;
  if (parse == nullptr || !parse(document, "<p>one</p>two", "", false, false)) return 1;
  std::cout << document->children.size() << " children" << std::endl;
  delete document;
  dlclose(library);
}
