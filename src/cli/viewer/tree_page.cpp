#include "viewer/tree_page.h"

#include "pages/tree_rows.h"
#include "viewer.h"

namespace cli {

std::string shown(const TreePage& trees) {
  return std::string() +
         "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
         "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
         "script-src '" +
         viewer_script_hash + "'; style-src '" + viewer_style_hash +
         "'; base-uri 'none'; form-action 'none'\">\n"
         "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
         "<title>Tree</title>\n<style>" +
         viewer_style +
         "</style>\n</head>\n<body>\n<noscript>This page needs scripts.</noscript>\n" +
         "<script type=\"application/json\" id=\"data\">\n{\"name\":" +
         string_in_script(trees.name) + ",\n\"selector\":" + string_in_script(trees.selector) +
         ",\n\"selected\":\"" + (trees.host_selects ? "host" : "page") +
         "\",\n\"source\":" + string_in_script(trees.source) + ",\n\"page\":" + trees.page +
         ",\n\"host\":" + trees.host + "}\n</script>\n<script>" + viewer_script +
         "</script>\n</body>\n</html>\n";
}

}  // namespace cli
