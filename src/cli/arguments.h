// The arguments of a subcommand in forms that CLI11 knows.

#ifndef QO_CLI_ARGUMENTS_H
#define QO_CLI_ARGUMENTS_H

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace cli {

// CLI11 takes an argument in brackets for a list, and "++" for the end of a subcommand. A mark in
// front, which this takes away again, keeps it from that.
std::string without_guard(const std::string& argument);

// The arguments, with what CLI11 does not know brought into forms that it does, but for the suffix
// of
// "-iSUFFIX" and "--in-place=SUFFIX".
std::vector<std::string> known_forms(const CLI::App& command, int argc, char** argv,
                                     std::string& suffix);

}  // namespace cli

#endif
