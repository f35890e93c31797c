// What all fuzz targets check. A violated invariant ends the process.

#ifndef QO_HTML_FUZZ_SUPPORT_H
#define QO_HTML_FUZZ_SUPPORT_H

#include <cstddef>
#include <cstdint>
#include <iostream>
#include <memory>
#include <string>

#include <qo_html/qo_html.h>

using Owned = std::unique_ptr<_qo_html>;

// The entry that libFuzzer, or the replaying main, calls with one input after the other.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

void require(bool condition, const char* what);

// How many nodes the host has counted up and not yet down again.
long live_nodes();

// Requires links that agree with the child vectors, and what is written to equal what plain
// recursion writes. Returns the number of nodes.
long check_tree(_qo_html* top);

// Lets the library's diagnostic lines go nowhere, as long as it lives.
struct Quiet {
  Quiet() { std::cout.setstate(std::ios::failbit); }
  ~Quiet() { std::cout.clear(); }
};

// The document, or null.
Owned parse(const std::string& html, bool drop_comments);

#endif
