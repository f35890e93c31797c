// How far the work is.

#ifndef QO_CLI_IO_PROGRESS_H
#define QO_CLI_IO_PROGRESS_H

#include <chrono>
#include <cstddef>

namespace cli {

// Tells on standard error how far the work is, when that is a terminal and the work takes long.
class Progress {
 public:
  explicit Progress(std::size_t total);

  void done(std::size_t count);

  // Takes the line off the terminal, so that something else can be written.
  void clear();

 private:
  using Clock = std::chrono::steady_clock;

  std::size_t total_;
  bool wanted_;
  bool shown_ = false;
  Clock::time_point next_;
};

}  // namespace cli

#endif
