#include "io/output.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <exception>

#include "io/failure.h"
#include "io/files.h"

namespace cli {

namespace {

constexpr std::size_t block_size = 1 << 16;

void write_to_standard_output(std::string_view text) {
  write_all(STDOUT_FILENO, text, "standard output");
}

// "auto": on a terminal, unless the user's environment says no.
bool wants_color(const std::string& color, bool is_terminal) {
  if (color != "auto") return color == "always";
  const char* const no_color = std::getenv("NO_COLOR");
  const char* const terminal = std::getenv("TERM");
  return is_terminal && (no_color == nullptr || *no_color == '\0') && terminal != nullptr &&
         std::string_view(terminal) != "dumb";
}

bool is_standard_output(const std::string& path) {
  struct stat file;
  struct stat output;
  return stat(path.c_str(), &file) == 0 && S_ISREG(file.st_mode) &&
         fstat(STDOUT_FILENO, &output) == 0 && file.st_dev == output.st_dev &&
         file.st_ino == output.st_ino;
}

}  // namespace

Sink::Sink(const std::string& path, const std::string& color)
    : path_(path), is_terminal_(path.empty() && isatty(STDOUT_FILENO) == 1) {
  colored_ = wants_color(color, is_terminal_);
  if (!path_.empty() && is_standard_output(path_)) {
    throw Failure("-o: " + path_ + " is where standard output goes");
  }
}

Sink::~Sink() {
  try {
    flush();
  } catch (const std::exception&) {
    // The run has failed already, and said why.
  }
}

void Sink::write(std::string_view text) {
  if (path_.empty() && text.size() >= block_size) {
    flush();
    write_to_standard_output(text);
    return;
  }
  kept_ += text;
  if (path_.empty() && kept_.size() >= block_size) flush();
}

void Sink::flush() {
  if (!path_.empty() || kept_.empty()) return;
  std::string block;
  block.swap(kept_);  // what cannot be written is not tried again
  write_to_standard_output(block);
  block.clear();
  block.swap(kept_);
}

void Sink::finish() {
  flush();
  if (!kept_.empty()) replace_file(path_, kept_, Flush::yes);
}

void Output::write(std::string_view text) {
  if (sink_ == nullptr) {
    kept_ += text;
  } else {
    sink_->write(text);
  }
}

void Output::paint(const char* color, std::string_view text) {
  if (!colored_ || *color == '\0') return write(text);
  write(std::string("\x1b[") + color + "m");
  write(text);
  write("\x1b[m");
}

}  // namespace cli
