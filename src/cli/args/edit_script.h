// Edits that are read from a file.

#ifndef QO_CLI_ARGS_EDIT_SCRIPT_H
#define QO_CLI_ARGS_EDIT_SCRIPT_H

#include <string>
#include <string_view>
#include <vector>

#include "args/options.h"

namespace cli {

// Reads a selector and operations from each line that is not empty and no comment. Throws Failure.
std::vector<Edit> read_edit_script(const std::string& path);

// Splits a line as a shell does: at blanks, with '...', "..." and backslashes. Throws Failure when
// a quote is not closed.
std::vector<std::string> split_words(std::string_view line);

}  // namespace cli

#endif
