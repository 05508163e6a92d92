#include "support/KXTestSupport.h"

#include <atomic>
#include <unistd.h>

namespace kx::test {

TTempDir::TTempDir() {
  static std::atomic<int> Counter{0};
  FPath = std::filesystem::temp_directory_path() /
          ("kxtest-" + std::to_string(::getpid()) + "-" + std::to_string(Counter++));
  std::filesystem::remove_all(FPath);
  std::filesystem::create_directories(FPath);
}

TTempDir::~TTempDir() {
  std::error_code Ignored;
  std::filesystem::remove_all(FPath, Ignored);
}

} // namespace kx::test
