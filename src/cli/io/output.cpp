#include "io/output.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "io/failure.h"
#include "io/files.h"

namespace cli {

namespace {

constexpr std::size_t buffer_size = 1 << 16;

// "auto": on a terminal, unless the user's environment says no.
bool wants_color(const Options& options) {
  if (options.color != "auto") return options.color == "always";
  const char* const no_color = std::getenv("NO_COLOR");
  const char* const terminal = std::getenv("TERM");
  return options.output.empty() && (no_color == nullptr || *no_color == '\0') &&
         terminal != nullptr && std::string_view(terminal) != "dumb" && isatty(STDOUT_FILENO) == 1;
}

bool is_standard_output(const std::string& path) {
  struct stat file;
  struct stat output;
  return stat(path.c_str(), &file) == 0 && S_ISREG(file.st_mode) &&
         fstat(STDOUT_FILENO, &output) == 0 && file.st_dev == output.st_dev &&
         file.st_ino == output.st_ino;
}

}  // namespace

Sink::Sink(const Options& options) : path_(options.output), colored_(wants_color(options)) {
  if (!path_.empty() && is_standard_output(path_)) {
    throw Failure("-o: " + path_ + " is where standard output goes");
  }
}

void Sink::write(std::string_view text) {
  if (path_.empty()) {
    write_all(STDOUT_FILENO, text, "standard output");
  } else {
    kept_ += text;
  }
}

void Sink::finish() {
  if (!kept_.empty()) replace_file(path_, kept_, Flush::yes);
}

void Output::write(std::string_view text) {
  kept_ += text;
  if (sink_ == nullptr || kept_.size() < buffer_size) return;
  sink_->write(kept_);
  kept_.clear();
}

void Output::paint(const char* color, std::string_view text) {
  if (!colored_ || *color == '\0') return write(text);
  write(std::string("\x1b[") + color + "m");
  write(text);
  write("\x1b[m");
}

}  // namespace cli
