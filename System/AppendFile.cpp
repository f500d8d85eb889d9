#include "System/AppendFile.hpp"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zelvo {
namespace {

constexpr mode_t permissions = 0666;  // before the umask

std::error_code lastError() {
  return {errno, std::generic_category()};
}

}  // namespace

AppendFile AppendFile::standardOutput() {
  return AppendFile(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0));
}

AppendFile AppendFile::open(const std::string& path, std::error_code& error) {
  AppendFile file(::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_NOCTTY | O_CLOEXEC, permissions));
  const bool isLocked = file.file_ && flock(file.file_.number(), LOCK_EX | LOCK_NB) == 0;
  error = isLocked ? std::error_code() : lastError();
  return file;
}

std::uint64_t AppendFile::size(std::error_code& error) const {
  struct stat found = {};
  const bool isKnown = fstat(file_.number(), &found) == 0;
  error = isKnown ? std::error_code() : lastError();
  return isKnown ? static_cast<std::uint64_t>(found.st_size) : 0;
}

bool AppendFile::isTerminal() const {
  return isatty(file_.number()) == 1;
}

std::error_code AppendFile::append(std::string_view bytes) const {
  return {writeAll(file_, bytes), std::generic_category()};
}

}  // namespace zelvo
