// The pages and templates below folders.

#ifndef QO_CLI_IO_FOLDERS_H
#define QO_CLI_IO_FOLDERS_H

#include <string>
#include <vector>

namespace cli {

// Which files are read.
struct FileChoice {
  std::vector<std::string> files;  // "-" is standard input
  bool recursive = false;
  std::vector<std::string> include, exclude;  // globs
};

// Whether a name ends as those of pages and templates do.
bool has_page_ending(const std::string& name);

// The files to read: those that were named. With -r, the pages below a folder take its place, in
// the order of their names. Hidden folders, node_modules and links are left out there. A folder
// that cannot be read gives a complaint; `failed` counts these.
std::vector<std::string> find_files(const FileChoice& choice, std::size_t& failed);

}  // namespace cli

#endif
