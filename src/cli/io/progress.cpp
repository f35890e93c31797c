#include "io/progress.h"

#include <unistd.h>

#include <string>

#include "io/messages.h"

namespace cli {

Progress::Progress(std::size_t total)
    : total_(total),
      wanted_(total > 1 && isatty(STDERR_FILENO) == 1),
      next_(Clock::now() + std::chrono::seconds(1)) {}

void Progress::done(std::size_t count) {
  if (!wanted_ || Clock::now() < next_) return;
  next_ = Clock::now() + std::chrono::milliseconds(100);
  write_message("\r" + std::to_string(count) + " of " + std::to_string(total_) + " files");
  shown_ = true;
}

void Progress::clear() {
  if (shown_) write_message("\r\x1b[K");
  shown_ = false;
}

}  // namespace cli
