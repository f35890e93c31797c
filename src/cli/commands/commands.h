// The subcommands. Each does its work and returns the exit status; what stops it before any file is
// read is thrown as a Failure.

#ifndef QO_CLI_COMMANDS_COMMANDS_H
#define QO_CLI_COMMANDS_COMMANDS_H

#include "args/options.h"

namespace cli {

int run_select(const Options& options);
int run_table(const Options& options);
int run_form(const Options& options);
int run_edit(const Options& options);
int run_check(const Options& options);
int run_tree(const Options& options);
int run_decode(const Options& options);

}  // namespace cli

#endif
