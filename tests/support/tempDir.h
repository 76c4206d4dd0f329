#pragma once

#include <filesystem>
#include <random>
#include <string>

// A fresh directory for one test's files, removed with everything in it at the end.
class tempDir {
 public:
  tempDir() {
    std::random_device rd;
    const auto base = std::filesystem::temp_directory_path();
    do {
      root = base / ("jev3d-test-" + std::to_string(rd()));
    } while (!std::filesystem::create_directory(root));
  }
  ~tempDir() {
    std::error_code ec;
    std::filesystem::remove_all(root, ec);
  }
  tempDir(const tempDir&) = delete;
  tempDir& operator=(const tempDir&) = delete;

  std::filesystem::path path(const std::string& name) const { return root / name; }
  std::string file(const std::string& name) const { return (root / name).string(); }
  const std::filesystem::path& dir() const { return root; }

 private:
  std::filesystem::path root;
};
