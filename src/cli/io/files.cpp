#include "io/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "io/failure.h"
#include "io/signals.h"

namespace cli {

namespace {

[[noreturn]] void fail(const std::string& name) {
  throw Failure(name + ": " + std::strerror(errno));
}

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ > STDERR_FILENO) ::close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int number() const { return number_; }

  void close(const std::string& name) {
    const int number = number_;
    number_ = -1;
    if (::close(number) != 0) fail(name);
  }

 private:
  int number_;
};

struct stat status_of(int descriptor, const std::string& name) {
  struct stat status;
  if (fstat(descriptor, &status) != 0) fail(name);
  return status;
}

// One read gives all of a regular file. A file that turns out to be longer than it said is read on.
std::string read_all(int descriptor, const struct stat& status, const std::string& name) {
  const std::size_t expected =
      S_ISREG(status.st_mode) ? static_cast<std::size_t>(status.st_size) : 0;
  std::string text(expected == 0 ? 65536 : expected + 1, '\0');
  std::size_t size = 0;
  while (expected == 0 || size != expected) {
    const ssize_t count = ::read(descriptor, &text[size], text.size() - size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) fail(name);
    if (count == 0) break;
    size += static_cast<std::size_t>(count);
    if (size == text.size()) text.resize(2 * size);
  }
  text.resize(size);
  return text;
}

// A new file in the folder of `target`, which it replaces in the end; until then it goes away with
// this object.
class Replacement {
 public:
  explicit Replacement(const std::string& target)
      : target_(target),
        folder_(target.substr(0, target.rfind('/') + 1)),
        path_(folder_ + ".qo-XXXXXX"),
        file_(mkostemp(path_.data(), O_CLOEXEC)) {
    if (file_.number() < 0) {
      throw Failure(target + ": no new file can be made in its folder: " + std::strerror(errno));
    }
  }
  ~Replacement() {
    if (!path_.empty()) ::unlink(path_.c_str());
  }
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;

  // `like`: the file that gives owner and mode, or null.
  void write(std::string_view text, const struct stat* like, Flush flush) {
    write_all(file_.number(), text, target_);
    const int number = file_.number();
    if (like != nullptr) {
      if (fchmod(number, like->st_mode & (0777 | kept_owner(number, *like))) != 0) fail(target_);
    } else {
      const mode_t mask = umask(0);
      umask(mask);
      if (fchmod(number, 0666 & ~mask) != 0) fail(target_);
    }
    if (flush == Flush::yes && fsync(number) != 0) fail(target_);
    file_.close(target_);
  }

  // Gives the file the owner and group of another, where the user may do so. Returns the bits of
  // the mode that go with what was given.
  static mode_t kept_owner(int number, const struct stat& like) {
    if (fchown(number, like.st_uid, like.st_gid) == 0) return S_ISUID | S_ISGID | S_ISVTX;
    const bool owner = fchown(number, like.st_uid, static_cast<gid_t>(-1)) == 0;
    const bool group = fchown(number, static_cast<uid_t>(-1), like.st_gid) == 0;
    return (owner ? S_ISUID : 0u) | (group ? S_ISGID : 0u) | S_ISVTX;
  }

  void commit() {
    if (std::rename(path_.c_str(), target_.c_str()) != 0) fail(target_);
    path_.clear();
  }

 private:
  std::string target_;
  std::string folder_;
  std::string path_;
  Descriptor file_;
};

void write_directly(const std::string& path, std::string_view text) {
  Descriptor file(open(path.c_str(), O_WRONLY | O_CLOEXEC));
  if (file.number() < 0) fail(path);
  write_all(file.number(), text, path);
  file.close(path);
}

void write_replacement(const std::string& target, std::string_view text, const struct stat* like,
                       Flush flush) {
  const SignalsHeld held;
  Replacement replacement(target);
  replacement.write(text, like, flush);
  replacement.commit();
}

}  // namespace

std::string resolved(const std::string& path) {
  const std::unique_ptr<char, void (*)(void*)> target(realpath(path.c_str(), nullptr), std::free);
  return target == nullptr ? path : target.get();
}

bool is_regular_file(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

std::string shown_path(const std::string& path) {
  return path == "-" ? "(standard input)" : path;
}

Input read_input(const std::string& path) {
  const std::string name = shown_path(path);
  if (path == "-") return {name, read_all(STDIN_FILENO, status_of(STDIN_FILENO, name), name), 0};
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.number() < 0) fail(path);
  const struct stat status = status_of(file.number(), path);
  if (S_ISDIR(status.st_mode)) throw Failure(path + ": is a folder; -r reads the pages in it");
  return {path, read_all(file.number(), status, path), 0};
}

void write_all(int descriptor, std::string_view text, const std::string& name) {
  while (!text.empty()) {
    const ssize_t count = ::write(descriptor, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) fail(name);
    text.remove_prefix(static_cast<std::size_t>(count));
  }
}

void replace_file(const std::string& path, std::string_view text, Flush flush) {
  struct stat status;
  if (stat(path.c_str(), &status) != 0) {
    if (errno != ENOENT) fail(path);
    if (lstat(path.c_str(), &status) == 0) throw Failure(path + ": is a link to nothing");
    return write_replacement(path, text, nullptr, flush);
  }
  if (!S_ISREG(status.st_mode)) return write_directly(path, text);
  if (access(path.c_str(), W_OK) != 0) fail(path);
  write_replacement(resolved(path), text, &status, flush);
}

std::size_t write_back(const std::string& target, const std::string& name, std::string_view text,
                       Flush flush) {
  struct stat status;
  if (lstat(target.c_str(), &status) != 0) fail(target);
  if (!S_ISREG(status.st_mode)) throw Failure(name + ": is no regular file");
  if (access(target.c_str(), W_OK) != 0) fail(target);
  write_replacement(target, text, &status, flush);
  return static_cast<std::size_t>(status.st_nlink);
}

void back_up_file(const std::string& path, const std::string& suffix, std::string_view text,
                  Flush flush) {
  struct stat status;
  if (stat(path.c_str(), &status) != 0) fail(path);
  write_replacement(path + suffix, text, &status, flush);
}

}  // namespace cli
