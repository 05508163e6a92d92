#pragma once
// Helpers shared by the test programs.

#include <filesystem>
#include <string>

namespace kx::test {

// A fresh, empty folder under the system's temporary folder, removed when destroyed.
class TTempDir {
public:
  TTempDir();
  ~TTempDir();
  TTempDir(const TTempDir&) = delete;
  TTempDir& operator=(const TTempDir&) = delete;
  const std::filesystem::path& Path() const { return FPath; }
  std::filesystem::path operator/(const std::string& Name) const { return FPath / Name; }

private:
  std::filesystem::path FPath;
};

} // namespace kx::test
