// Files, read and written whole.

#ifndef QO_CLI_IO_FILES_H
#define QO_CLI_IO_FILES_H

#include <string>
#include <string_view>

namespace cli {

// A page before it is parsed.
struct Input {
  std::string name;  // shown_path()
  std::string text;
  std::size_t index = 0;  // among the files of the run
};

// A path as messages and results show it.
std::string shown_path(const std::string& path);

// Reads a file; "-" is standard input. Throws Failure.
Input read_input(const std::string& path);

// Where the links of a path lead; the path itself when nothing is there.
std::string resolved(const std::string& path);

bool is_regular_file(const std::string& path);

// Writes all of `text` to a file descriptor; `name` is for the message. Throws Failure.
void write_all(int descriptor, std::string_view text, const std::string& name);

// Whether a new file is on the disk before it takes the place of the old one. Without that, a power
// cut is up to the file system: most bring back the old file or keep the new one.
enum class Flush { no, yes };

// Gives the file the content `text`. Whatever happens to the process meanwhile, the file holds all
// of its old or all of its new content: a file in the same folder is written and renamed. Links are
// followed and the mode stays; what is no regular file is written directly. Throws Failure.
void replace_file(const std::string& path, std::string_view text, Flush flush);

// The same for a regular file whose links were resolved() before; `name` is what the user calls it.
// Returns how many names the old file had. Throws Failure for what is no regular file, too.
std::size_t write_back(const std::string& target, const std::string& name, std::string_view text,
                       Flush flush);

// Copies the file at `path` to `path` + `suffix`, in the same way.
void back_up_file(const std::string& path, const std::string& suffix, std::string_view text,
                  Flush flush);

}  // namespace cli

#endif
