// One run of the tool over its files: where results go, what went wrong, and the exit status.

#ifndef QO_CLI_SESSION_H
#define QO_CLI_SESSION_H

#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "files.h"
#include "options.h"

namespace cli {

enum ExitStatus { status_found = 0, status_not_found = 1, status_failed = 2 };

// What one file gave; after `enough`, no more files are read.
enum class Found { nothing, something, enough };

// Writes "qo: MESSAGE" to standard error, on one line.
void complain(std::string_view message);

// Writes some lines to standard error, each with two blanks in front.
void complain_of_place(std::string_view lines);

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

// Results, on standard output or for a file that is written when all work is done.
class Output {
 public:
  explicit Output(const CommonOptions& options);

  void write(std::string_view text);

  // `text` in one of the terminal's colors, such as "1;31", or in its own (""), where colors are
  // wanted.
  void paint(const char* color, std::string_view text);

  bool has_pending() const { return !pending_.empty(); }

  // Passes on what was written; to a file, only when `last` is set.
  void flush(bool last);

 private:
  std::string path_;
  bool colored_;
  std::string pending_;
};

class Session {
 public:
  explicit Session(const CommonOptions& options) : out_(options) {}

  Output& out() { return out_; }

  // Reads one file after the other ("-" or none: standard input) and gives it to `work`. A Failure
  // costs a message and the status, and the next file is read. Returns the exit status.
  int run(std::vector<std::string> files, const std::function<Found(Input&)>& work);

 private:
  Output out_;
};

}  // namespace cli

#endif
