#include "io/signals.h"

namespace cli {

namespace {

constexpr int ending_signals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

}  // namespace

SignalsHeld::SignalsHeld() {
  sigemptyset(&held_);
  for (const int number : ending_signals) sigaddset(&held_, number);
  pthread_sigmask(SIG_BLOCK, &held_, &former_);
}

SignalsHeld::~SignalsHeld() {
  pthread_sigmask(SIG_SETMASK, &former_, nullptr);
}

bool SignalsHeld::is_pending() const {
  sigset_t pending;
  sigpending(&pending);
  for (const int number : ending_signals) {
    if (sigismember(&pending, number) == 1 && sigismember(&former_, number) == 0) return true;
  }
  return false;
}

}  // namespace cli
