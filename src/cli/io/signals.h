// Signals that a user ends a program with.

#ifndef QO_CLI_IO_SIGNALS_H
#define QO_CLI_IO_SIGNALS_H

#include <csignal>

namespace cli {

// Holds them back while files are replaced, so that no temporary file is left. Threads that begin
// meanwhile hold them back, too.
class SignalsHeld {
 public:
  SignalsHeld();
  ~SignalsHeld();
  SignalsHeld(const SignalsHeld&) = delete;
  SignalsHeld& operator=(const SignalsHeld&) = delete;

  // Whether one of them is waiting.
  bool is_pending() const;

 private:
  sigset_t held_;
  sigset_t former_;
};

}  // namespace cli

#endif
