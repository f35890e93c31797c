// What the tool ends with when it cannot do what was asked.

#ifndef QO_CLI_IO_FAILURE_H
#define QO_CLI_IO_FAILURE_H

#include <stdexcept>

namespace cli {

// What ends the work on a file, or the whole run: one line, without the tool's name.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace cli

#endif
