// The ready-made host services.

#include <qo_html/qo_html_default_host.h>

#include <iostream>
#include <sstream>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

TEST(DefaultHost, CountsPerTagOnAnyThread) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([i] {
      for (int n = 0; n < 10000; ++n) {
        qo_object_ref_increment("[shared]");
        qo_object_ref_increment("[" + std::to_string((n + i) % 7) + "]");
        if (n % 2 == 0) qo_object_ref_decrement("[shared]");
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(qo_object_ref_count("[shared]"), 20000);
  long others = 0;
  for (int i = 0; i < 7; ++i) others += qo_object_ref_count("[" + std::to_string(i) + "]");
  EXPECT_EQ(others, 40000);
  EXPECT_EQ(qo_object_ref_count("[never seen]"), 0);
}

TEST(DefaultHost, PrintsFailedChecksOnly) {
  std::ostringstream lines;
  std::streambuf* const former = std::cerr.rdbuf(lines.rdbuf());
  qo_assertion_faild(true, "a == a", "holds", "file", 1);
  qo_assertion_faild(false, "a == b", "differs", "file", 2);
  std::cerr.rdbuf(former);
  EXPECT_EQ(lines.str(), "file:2: check failed: a == b: differs\n");
}

}  // namespace
