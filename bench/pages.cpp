#include "pages.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <sstream>
#include <utility>

#include <qo_html/qo_html.h>

#include "services.h"

namespace {

std::string repeated(const std::string& piece, std::size_t count) {
  std::string out;
  out.reserve(piece.size() * count);
  for (std::size_t i = 0; i < count; ++i) out += piece;
  return out;
}

// The number of nodes in the tree of `text`, 0 when it is refused.
std::size_t count_nodes(const std::string& text) {
  _qo_html* document = nullptr;
  std::ostringstream said;
  std::streambuf* const former = std::cout.rdbuf(said.rdbuf());
  const bool parsed = parseHtml(document, text, "", false, false);
  std::cout.rdbuf(former);
  if (!parsed) return 0;
  const std::unique_ptr<_qo_html> owner(document);
  return live_nodes();
}

}  // namespace

void Pages::add(std::string text) {
  bytes += text.size();
  nodes += count_nodes(text);
  texts.push_back(std::move(text));
}

Pages read_pages(const std::string& folder, std::size_t& refused) {
  std::vector<std::filesystem::path> paths;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == ".html") paths.push_back(entry.path());
  }
  std::sort(paths.begin(), paths.end());
  Pages pages;
  refused = 0;
  for (const auto& path : paths) {
    std::ifstream file(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (count_nodes(text) == 0) {
      ++refused;
    } else {
      pages.add(std::move(text));
    }
  }
  return pages;
}

std::string many_attributes(std::size_t count) {
  std::string text = "<p";
  for (std::size_t i = 0; i < count; ++i) text += " data_" + std::to_string(i) + "=\"v\"";
  return text + "></p>";
}

Pages adversarial_text(const std::string& kind) {
  const std::size_t count = 100000;
  Pages pages;
  if (kind == "deep") {
    // libxml2 and gumbo recurse, or count levels, where this library does not: 200 levels suit all.
    pages.add(repeated(repeated("<div>", 200) + "x" + repeated("</div>", 200), count / 200));
  } else if (kind == "flat") {
    pages.add("<div>" + repeated("<b>x</b>", count) + "</div>");
  } else if (kind == "comments") {
    pages.add(repeated("<!-- - -- -->x", count));
  } else if (kind == "ampersands") {
    pages.add("<p>" + repeated("&&amp&", count) + "</p>");
  } else if (kind == "attributes") {
    pages.add(many_attributes(count / 20));  // the peers take quadratic time
  }
  return pages;
}
