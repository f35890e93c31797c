// Results, on standard output or in a file that is written when all work is done.

#ifndef QO_CLI_IO_OUTPUT_H
#define QO_CLI_IO_OUTPUT_H

#include <string>
#include <string_view>

#include "args/options.h"

namespace cli {

// Where the results of a run go.
class Sink {
 public:
  // Throws Failure when they would replace the file that standard output is.
  explicit Sink(const Options& options);

  bool is_colored() const { return colored_; }

  // Passes results on at once or, for a file, keeps them.
  void write(std::string_view text);

  // After the last results: writes the file, if there is any result.
  void finish();

 private:
  std::string path_;
  bool colored_;
  std::string kept_;
};

// The results of one file of a run. They are kept, or passed on when there are many of them.
class Output {
 public:
  // `sink`: null keeps all.
  Output(bool colored, Sink* sink) : colored_(colored), sink_(sink) {}

  void write(std::string_view text);

  // `text` in one of the terminal's colors, such as "1;31", or in its own (""), where colors are
  // wanted.
  void paint(const char* color, std::string_view text);

  // What was kept.
  const std::string& kept() const { return kept_; }

 private:
  bool colored_;
  Sink* sink_;
  std::string kept_;
};

}  // namespace cli

#endif
