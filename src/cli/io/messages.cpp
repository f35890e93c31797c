#include "io/messages.h"

#include <unistd.h>

#include <algorithm>

#include "io/failure.h"
#include "io/files.h"
#include "io/text.h"

namespace cli {

namespace {

constexpr std::size_t most_alike = 10;

// The message without file and place.
std::string reason_of(const std::string& file, const std::string& message) {
  if (message.compare(0, file.size(), file) != 0) return message;
  const std::size_t begin = message.find_first_not_of(":0123456789 ", file.size());
  return begin == std::string::npos ? message : message.substr(begin);
}

}  // namespace

void write_message(const std::string& text) {
  try {
    write_all(STDERR_FILENO, text, "standard error");
  } catch (const Failure&) {
    // There is nowhere left to say it.
  }
}

void complain(std::string_view message) {
  write_message("qo: " + printable(message) + "\n");
}

void complain_of_place(std::string_view lines) {
  while (!lines.empty()) {
    const std::string_view line = lines.substr(0, lines.find('\n'));
    write_message("  " + printable(line) + "\n");
    lines.remove_prefix(std::min(line.size() + 1, lines.size()));
  }
}

void FileComplaints::add(const std::string& file, const std::string& message) {
  if (++counts_[reason_of(file, message)] <= most_alike) complain(message);
}

void FileComplaints::finish() {
  for (const auto& [reason, count] : counts_) {
    if (count > most_alike) {
      complain("and " + std::to_string(count - most_alike) + " more files: " + reason);
    }
  }
}

}  // namespace cli
