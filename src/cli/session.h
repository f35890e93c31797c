// One run of the tool over its files: the work on each, results in the order of the files, what
// went wrong, and the exit status.

#ifndef QO_CLI_SESSION_H
#define QO_CLI_SESSION_H

#include <condition_variable>
#include <exception>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "args/options.h"
#include "io/files.h"
#include "io/messages.h"
#include "io/output.h"
#include "io/progress.h"

namespace cli {

enum ExitStatus { status_found = 0, status_not_found = 1, status_failed = 2 };

// What one file gave; after `enough`, no more files are read.
enum class Found { nothing, something, enough };

// Does the work on one file. It is called by several threads.
using Work = std::function<Found(Input& input, Output& out)>;

class Session {
 public:
  // Finds the files. Throws Failure.
  explicit Session(const Options& options);

  // Those to work on; "-" is standard input.
  const std::vector<std::string>& files() const { return files_; }

  // Whether results have the name of their file in front.
  bool shows_names() const;

  // Reads the files and gives them to `work`. A Failure costs a message and the status, and the
  // next file is read. Returns the exit status. Throws Failure when results cannot be written.
  int run(const Work& work);

 private:
  struct Result {
    Found found = Found::nothing;
    std::string text;
    std::optional<std::string> complaint;
  };

  Result work_on(std::size_t index, const Work& work, Sink* sink) const;
  void run_alone(const Work& work);
  void run_threads(const Work& work, std::size_t count);
  void run_thread(const Work& work);
  std::optional<std::size_t> claim();
  void deliver(std::size_t index, Result result);
  void report(const std::string& file, const Result& result);
  bool must_stop() const;

  const Options& options_;
  Sink sink_;
  std::size_t failed_ = 0;
  std::vector<std::string> files_;
  FileComplaints complaints_;
  Progress progress_;
  const class SignalsHeld* signals_ = nullptr;  // while files are written to

  // What was reported so far.
  Found found_ = Found::nothing;
  std::size_t reported_ = 0;

  // What threads share; all of it, and the above, is used with `mutex_` held.
  std::mutex mutex_;
  std::condition_variable reported_more_;
  std::size_t claimed_ = 0;
  std::map<std::size_t, Result> early_;  // results whose turn has not come
  std::exception_ptr failure_;
};

}  // namespace cli

#endif
