// The texts that the benchmark works on.

#ifndef QO_HTML_BENCH_PAGES_H
#define QO_HTML_BENCH_PAGES_H

#include <string>
#include <vector>

struct Pages {
  std::vector<std::string> texts;
  std::size_t bytes = 0;
  std::size_t nodes = 0;  // in the trees that qo_html makes of them

  void add(std::string text);
};

// The pages of a folder that parseHtml accepts; `refused` counts the others.
Pages read_pages(const std::string& folder, std::size_t& refused);

// Texts that are hard on a parser, one each: deep, flat, comments, ampersands, attributes.
Pages adversarial_text(const std::string& kind);

// A start tag with `count` different attributes.
std::string many_attributes(std::size_t count);

#endif
