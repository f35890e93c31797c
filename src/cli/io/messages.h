// What is said on standard error.

#ifndef QO_CLI_IO_MESSAGES_H
#define QO_CLI_IO_MESSAGES_H

#include <map>
#include <string>
#include <string_view>

namespace cli {

// Writes "qo: MESSAGE", on one line.
void complain(std::string_view message);

// Writes some lines, each with two blanks in front.
void complain_of_place(std::string_view lines);

// Writes to standard error as it is.
void write_message(const std::string& text);

// Complaints about many files. Of those that say the same, the first ones are printed and the
// others counted.
class FileComplaints {
 public:
  // `message` is "FILE: ...", or "FILE:LINE:COLUMN: ...".
  void add(const std::string& file, const std::string& message);

  // Prints how many were held back.
  void finish();

 private:
  std::map<std::string, std::size_t> counts_;
};

}  // namespace cli

#endif
