// Results, on standard output or in a file that is written when all work is done.

#ifndef QO_CLI_IO_OUTPUT_H
#define QO_CLI_IO_OUTPUT_H

#include <string>
#include <string_view>
#include <utility>

namespace cli {

// Where the results of a run go.
class Sink {
 public:
  // `path`: a file; empty: standard output. `color`: "always", "never", or "auto". Throws Failure
  // when results would replace the file that standard output is.
  Sink(const std::string& path, const std::string& color);

  // Writes what is still kept for standard output.
  ~Sink();
  Sink(const Sink&) = delete;
  Sink& operator=(const Sink&) = delete;

  bool is_colored() const { return colored_; }

  // Passes results on in large blocks or, for a file, keeps them. Throws Failure when they cannot
  // be written.
  void write(std::string_view text);

  // Passes on what is kept; a file is only written in the end.
  void flush();

  // Whether somebody at a terminal waits for what is kept.
  bool is_due() const { return is_terminal_ && !kept_.empty(); }

  // After the last results: writes the file, if there is any result.
  void finish();

 private:
  std::string path_;
  bool colored_;
  bool is_terminal_;
  std::string kept_;
};

// The results of one file of a run, which are passed on or kept.
class Output {
 public:
  // `sink`: null keeps all.
  Output(bool colored, Sink* sink) : colored_(colored), sink_(sink) {}

  void write(std::string_view text);

  // `text` in one of the terminal's colors, such as "1;31", or in its own (""), where colors are
  // wanted.
  void paint(const char* color, std::string_view text);

  // What was kept.
  std::string take() { return std::move(kept_); }

 private:
  bool colored_;
  Sink* sink_;
  std::string kept_;
};

}  // namespace cli

#endif
