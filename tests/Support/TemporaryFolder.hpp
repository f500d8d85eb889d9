#pragma once

#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <unistd.h>

namespace zelvo::testing {

/// A folder of one test's own in the current one, gone with the test.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    static std::atomic<int> count = 0;
    path_ = std::filesystem::current_path() /
            ("temporary-" + std::to_string(getpid()) + "-" + std::to_string(++count));
    std::filesystem::create_directory(path_);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  std::string path(std::string_view name) const { return (path_ / name).string(); }

  /// Writes a file and returns its path.
  std::string write(std::string_view name, std::string_view content) const {
    std::ofstream(path(name), std::ios::binary) << content;
    return path(name);
  }

 private:
  std::filesystem::path path_;
};

}  // namespace zelvo::testing
