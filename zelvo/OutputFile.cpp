#include "zelvo/OutputFile.hpp"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>
#include <unistd.h>

namespace zelvo {
namespace {

/// What other runs may have left when the machine went down.
constexpr int maximumAttempts = 100;

struct CloseFile {
  void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

/// A file of a name of its own beside another. It goes away unless it takes the other's name.
class FileBeside {
 public:
  explicit FileBeside(const std::filesystem::path& target) : target_(target) {
    for (int i = 0; i < maximumAttempts && !file_; ++i) {
      path_ = target.parent_path() / (".zelvo-" + std::to_string(i));
      // Exclusive: a file or link that is there already is nobody's to overwrite.
      file_.reset(std::fopen(path_.c_str(), "wbxe"));
      if (!file_ && errno != EEXIST) break;
    }
  }
  FileBeside(const FileBeside&) = delete;
  FileBeside& operator=(const FileBeside&) = delete;
  ~FileBeside() {
    std::error_code ignored;
    if (file_) std::filesystem::remove(path_, ignored);
  }

  /// Leaves the reason of a failure in errno.
  bool write(ByteView content) {
    return file_ && std::fwrite(content.data(), 1, content.size(), file_.get()) == content.size() &&
           std::fflush(file_.get()) == 0 && fsync(fileno(file_.get())) == 0 &&
           std::rename(path_.c_str(), target_.c_str()) == 0 && release();
  }

 private:
  bool release() {
    file_.reset();
    return true;
  }

  std::filesystem::path target_;
  std::filesystem::path path_;
  File file_;
};

}  // namespace

std::optional<std::string> writeFile(const std::string& path, ByteView content) {
  FileBeside file(path);
  if (file.write(content)) return std::nullopt;
  return "The file cannot be written: " + path + ": " + std::generic_category().message(errno);
}

}  // namespace zelvo
