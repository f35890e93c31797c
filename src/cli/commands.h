// The subcommands. Each does its work and returns the exit status; what stops it before any file is
// read is thrown as a Failure.

#ifndef QO_CLI_COMMANDS_H
#define QO_CLI_COMMANDS_H

#include "options.h"

namespace cli {

int run(const SelectOptions& options);
int run(const FormOptions& options);
int run(const EditOptions& options);
int run(const CheckOptions& options);
int run(const TreeOptions& options);
int run(const DecodeOptions& options);

}  // namespace cli

#endif
