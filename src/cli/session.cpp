#include "session.h"

#include <algorithm>
#include <new>
#include <thread>
#include <utility>

#include <qo_page/page.h>

#include "io/failure.h"
#include "io/folders.h"
#include "io/signals.h"

namespace cli {

namespace {

// How many results may wait for the one whose turn it is.
constexpr std::size_t most_early = 256;

std::size_t thread_count(const Options& options, std::size_t files) {
  const std::size_t wanted = options.threads != 0
                                 ? options.threads
                                 : std::max<std::size_t>(1, std::thread::hardware_concurrency());
  return std::min(wanted, files);
}

}  // namespace

Session::Session(const Options& options)
    : options_(options),
      sink_(options.output, options.color),
      files_(find_files(options, failed_)),
      progress_(files_.size()) {}

bool Session::shows_names() const {
  return options_.with_name.value_or(options_.recursive || options_.files.size() > 1);
}

int Session::run(const Work& work) {
  std::optional<SignalsHeld> signals;
  if (options_.in_place) signals_ = &signals.emplace();
  const std::size_t threads = thread_count(options_, files_.size());
  if (threads > 1) {
    run_threads(work, threads);
  } else {
    run_alone(work);
  }
  progress_.clear();
  complaints_.finish();
  if (found_ == Found::enough) return status_found;
  sink_.finish();
  if (failed_ > 0) return status_failed;
  return found_ == Found::nothing ? status_not_found : status_found;
}

bool Session::must_stop() const {
  return found_ == Found::enough || (signals_ != nullptr && signals_->is_pending());
}

void Session::run_alone(const Work& work) {
  for (std::size_t i = 0; i < files_.size() && !must_stop(); ++i) {
    report(shown_path(files_[i]), work_on(i, work, &sink_));
  }
}

void Session::run_threads(const Work& work, std::size_t count) {
  std::vector<std::thread> threads;
  try {
    while (threads.size() < count) threads.emplace_back([this, &work] { run_thread(work); });
  } catch (const std::system_error&) {
    if (threads.empty()) run_thread(work);  // fewer will do
  }
  for (std::thread& thread : threads) thread.join();
  if (failure_ != nullptr) std::rethrow_exception(failure_);
}

void Session::run_thread(const Work& work) {
  try {
    while (const std::optional<std::size_t> index = claim()) {
      deliver(*index, work_on(*index, work, nullptr));
    }
  } catch (...) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (failure_ == nullptr) failure_ = std::current_exception();
    reported_more_.notify_all();
  }
}

// The next file to work on, nothing at the end. Waits while too many results wait for their turn.
std::optional<std::size_t> Session::claim() {
  std::unique_lock<std::mutex> lock(mutex_);
  reported_more_.wait(lock, [this] {
    return claimed_ < reported_ + most_early || failure_ != nullptr || must_stop();
  });
  if (claimed_ == files_.size() || failure_ != nullptr || must_stop()) return std::nullopt;
  return claimed_++;
}

void Session::deliver(std::size_t index, Result result) {
  const std::lock_guard<std::mutex> lock(mutex_);
  early_.emplace(index, std::move(result));
  for (auto next = early_.find(reported_); next != early_.end() && found_ != Found::enough;
       next = early_.find(reported_)) {
    report(shown_path(files_[next->first]), next->second);
    early_.erase(next);
  }
  reported_more_.notify_all();
}

Session::Result Session::work_on(std::size_t index, const Work& work, Sink* sink) const {
  const std::string file = shown_path(files_[index]);
  Result result;
  Output out(sink_.is_colored(), sink);
  try {
    Input input = read_input(files_[index]);
    input.index = index;
    result.found = work(input, out);
  } catch (const Failure& failure) {
    result.complaint = failure.what();
  } catch (const qo::Error& error) {
    result.complaint = file + ": " + error.what();
  } catch (const std::bad_alloc&) {
    result.complaint = file + ": out of memory";
  }
  result.text = out.take();
  return result;
}

void Session::report(const std::string& file, const Result& result) {
  sink_.write(result.text);
  if (result.complaint || sink_.is_due()) {
    progress_.clear();
    sink_.flush();
  }
  if (result.complaint) {
    complaints_.add(file, *result.complaint);
    ++failed_;
  }
  found_ = std::max(found_, result.found);
  progress_.done(++reported_);
}

}  // namespace cli
