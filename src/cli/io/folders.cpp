#include "io/folders.h"

#include <dirent.h>
#include <fnmatch.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string_view>

#include <qo_page/page.h>

#include "io/messages.h"
#include "io/text.h"

namespace cli {

namespace {

bool matches(const std::vector<std::string>& globs, const std::string& name,
             const std::string& path) {
  return std::any_of(globs.begin(), globs.end(), [&](const std::string& glob) {
    const std::string& subject = glob.find('/') == std::string::npos ? name : path;
    if (fnmatch(glob.c_str(), subject.c_str(), 0) == 0) return true;
    return glob.compare(0, 3, "**/") == 0 && fnmatch(glob.c_str() + 3, subject.c_str(), 0) == 0;
  });
}

struct Entry {
  std::string name;
  bool is_folder;
};

class Search {
 public:
  Search(const FileChoice& choice, std::vector<std::string>& found, std::size_t& failed)
      : choice_(choice), found_(found), failed_(failed) {}

  // `top` is in front of all that is found.
  void search(const std::string& top) {
    std::vector<std::string> folders = {""};  // below top, each with a "/" at its end; last first
    while (!folders.empty()) {
      const std::string path = std::move(folders.back());
      folders.pop_back();
      if (!path.empty() && path.back() != '/') {
        found_.push_back(top.empty() && path == "-" ? "./-" : top + path);
        continue;
      }
      std::vector<Entry> entries = wanted_in(top + path, path);
      for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
        folders.push_back(path + entry->name + (entry->is_folder ? "/" : ""));
      }
    }
  }

 private:
  // What is wanted in a folder, in the order of names.
  std::vector<Entry> wanted_in(const std::string& folder, const std::string& path) {
    std::vector<Entry> entries;
    const std::unique_ptr<DIR, int (*)(DIR*)> open(opendir(folder.empty() ? "." : folder.c_str()),
                                                   closedir);
    if (open == nullptr) {
      complain(folder + ": " + std::strerror(errno));
      ++failed_;
      return entries;
    }
    while (const dirent* entry = readdir(open.get())) {
      const std::string name = entry->d_name;
      if (name == "." || name == "..") continue;
      const unsigned char type = type_of(folder, *entry);
      if (type == DT_DIR && is_wanted_folder(name, path + name)) entries.push_back({name, true});
      if (type == DT_REG && is_wanted_file(name, path + name)) entries.push_back({name, false});
    }
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a, const Entry& b) { return a.name < b.name; });
    return entries;
  }

  // Not all file systems tell with the name.
  static unsigned char type_of(const std::string& folder, const dirent& entry) {
    if (entry.d_type != DT_UNKNOWN) return entry.d_type;
    struct stat status;
    if (lstat((folder + entry.d_name).c_str(), &status) != 0) return DT_UNKNOWN;
    return S_ISDIR(status.st_mode) ? DT_DIR : S_ISREG(status.st_mode) ? DT_REG : DT_UNKNOWN;
  }

  bool is_wanted_folder(const std::string& name, const std::string& path) const {
    return name[0] != '.' && name != "node_modules" && !matches(choice_.exclude, name, path);
  }

  bool is_wanted_file(const std::string& name, const std::string& path) const {
    const bool is_included =
        choice_.include.empty() ? has_page_ending(name) : matches(choice_.include, name, path);
    return is_included && !matches(choice_.exclude, name, path);
  }

  const FileChoice& choice_;
  std::vector<std::string>& found_;
  std::size_t& failed_;
};

bool is_folder(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

// What any dialect's files end in.
bool has_page_ending(const std::string& name) {
  const std::size_t dot = name.rfind('.');
  if (dot == std::string::npos) return false;
  const std::string ending = " " + lower(std::string_view(name).substr(dot + 1)) + " ";
  const std::vector<qo::DialectInfo> rows = qo::dialects();
  return std::any_of(rows.begin(), rows.end(), [&ending](const qo::DialectInfo& row) {
    return (" " + std::string(row.endings) + " ").find(ending) != std::string::npos;
  });
}

std::vector<std::string> find_files(const FileChoice& choice, std::size_t& failed) {
  std::vector<std::string> found;
  Search search(choice, found, failed);
  if (choice.recursive && choice.files.empty()) search.search("");
  for (const std::string& file : choice.files) {
    if (choice.recursive && file != "-" && is_folder(file)) {
      search.search(file.back() == '/' ? file : file + "/");
    } else {
      found.push_back(file);
    }
  }
  if (!choice.recursive && found.empty()) found.emplace_back("-");
  return found;
}

}  // namespace cli
