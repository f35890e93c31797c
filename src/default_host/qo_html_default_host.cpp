#include <qo_html/qo_html_default_host.h>

#include <atomic>
#include <iostream>
#include <map>
#include <mutex>
#include <shared_mutex>
#include <sstream>

namespace {

// Counters by tag. A tag's counter, once made, stays where it is, so that counting needs no
// exclusive lock.
class Counters {
 public:
  std::atomic<long>& of(const std::string& tag) {
    {
      std::shared_lock<std::shared_mutex> lock(mutex_);
      const auto found = counters_.find(tag);
      if (found != counters_.end()) return found->second;
    }
    std::unique_lock<std::shared_mutex> lock(mutex_);
    return counters_[tag];
  }

 private:
  std::shared_mutex mutex_;
  std::map<std::string, std::atomic<long>> counters_;
};

// Never destroyed: nodes may be counted until the process has ended.
Counters& counters() {
  static Counters* const instance = new Counters;
  return *instance;
}

}  // namespace

void qo_object_ref_increment(std::string tag) {
  ++counters().of(tag);
}

void qo_object_ref_decrement(std::string tag) {
  --counters().of(tag);
}

long qo_object_ref_count(const std::string& tag) {
  return counters().of(tag);
}

void qo_assertion_faild(bool condition, std::string condition_text, std::string message,
                        std::string file, int line) {
  if (condition) return;
  std::ostringstream out;
  out << file << ':' << line << ": check failed: " << condition_text << ": " << message << '\n';
  std::cerr << out.str() << std::flush;
}
