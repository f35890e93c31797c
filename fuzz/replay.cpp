// Runs a fuzz target on files and on the files in folders.
// usage: fuzz_TARGET PATH...

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

#include "support.h"

namespace fs = std::filesystem;

static bool replay(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (!file) return false;
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  return true;
}

int main(int argc, char** argv) {
  int count = 0;
  for (int i = 1; i < argc; ++i) {
    std::error_code error;
    std::vector<fs::path> paths = {argv[i]};
    if (fs::is_directory(argv[i], error)) {
      paths.assign(fs::directory_iterator(argv[i], error), fs::directory_iterator());
    }
    for (const fs::path& path : paths) {
      if (!replay(path)) {
        std::cerr << argv[0] << ": cannot read " << path.string() << std::endl;
        return 2;
      }
      ++count;
    }
  }
  std::cout << count << " inputs" << std::endl;
  return count == 0 ? 2 : 0;
}
