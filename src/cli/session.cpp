#include "session.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <new>
#include <optional>

#include <qo_page/page.h>

#include "host_page.h"
#include "text.h"

namespace cli {

namespace {

constexpr std::size_t buffer_size = 1 << 16;

void write_to_stderr(const std::string& text) {
  try {
    write_all(STDERR_FILENO, text, "standard error");
  } catch (const Failure&) {
    // There is nowhere left to say it.
  }
}

// "auto": on a terminal, unless the user's environment says no.
bool wants_color(const CommonOptions& options) {
  if (options.color != "auto") return options.color == "always";
  const char* const no_color = std::getenv("NO_COLOR");
  const char* const terminal = std::getenv("TERM");
  return options.output.empty() && (no_color == nullptr || *no_color == '\0') &&
         terminal != nullptr && std::string_view(terminal) != "dumb" && isatty(STDOUT_FILENO) == 1;
}

}  // namespace

void complain(std::string_view message) {
  write_to_stderr("qo: " + printable(message) + "\n");
}

void complain_of_place(std::string_view lines) {
  while (!lines.empty()) {
    const std::string_view line = lines.substr(0, lines.find('\n'));
    write_to_stderr("  " + printable(line) + "\n");
    lines.remove_prefix(std::min(line.size() + 1, lines.size()));
  }
}

Progress::Progress(std::size_t total)
    : total_(total),
      wanted_(total > 1 && isatty(STDERR_FILENO) == 1),
      next_(Clock::now() + std::chrono::seconds(1)) {}

void Progress::done(std::size_t count) {
  if (!wanted_ || Clock::now() < next_) return;
  next_ = Clock::now() + std::chrono::milliseconds(100);
  write_to_stderr("\r" + std::to_string(count) + " of " + std::to_string(total_) + " files");
  shown_ = true;
}

void Progress::clear() {
  if (shown_) write_to_stderr("\r\x1b[K");
  shown_ = false;
}

Output::Output(const CommonOptions& options)
    : path_(options.output), colored_(wants_color(options)) {}

void Output::write(std::string_view text) {
  pending_ += text;
  if (pending_.size() >= buffer_size) flush(false);
}

void Output::paint(const char* color, std::string_view text) {
  if (colored_ && *color != '\0') {
    pending_.append("\x1b[").append(color).append("m");
    write(text);
    write("\x1b[m");
  } else {
    write(text);
  }
}

void Output::flush(bool last) {
  if (path_.empty()) {
    write_all(STDOUT_FILENO, pending_, "standard output");
    pending_.clear();
  } else if (last) {
    replace_file(path_, pending_);
  }
}

int Session::run(std::vector<std::string> files, const std::function<Found(Input&)>& work) {
  if (files.empty()) files.emplace_back("-");
  Progress progress(files.size());
  std::size_t count = 0;
  std::size_t failed = 0;
  Found found = Found::nothing;
  for (const std::string& file : files) {
    std::optional<std::string> complaint;
    try {
      Input input = read_input(file);
      const Found here = work(input);
      require_memory();
      found = std::max(found, here);
    } catch (const Failure& failure) {
      complaint = failure.what();
    } catch (const qo::Error& error) {
      complaint = file + ": " + error.what();
    } catch (const std::bad_alloc&) {
      complaint = file + ": out of memory";
    }
    if (complaint || out_.has_pending()) progress.clear();
    out_.flush(false);
    if (complaint) {
      complain(*complaint);
      ++failed;
    }
    if (found == Found::enough) return status_found;
    progress.done(++count);
  }
  progress.clear();
  if (failed < files.size()) out_.flush(true);
  if (failed > 0) return status_failed;
  return found == Found::nothing ? status_not_found : status_found;
}

}  // namespace cli
