#include "System/OutputFile.hpp"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <mutex>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "System/Descriptor.hpp"
#include "System/SignalCleanup.hpp"

namespace zelvo {
namespace {

/// The kernel's own limit.
constexpr int maximumLinks = 40;
constexpr mode_t allPermissions = S_IRWXU | S_IRWXG | S_IRWXO;
constexpr mode_t permissionsOfNewFile = 0666;  // before the umask

/// The path up to and with the last slash; empty for a name alone.
std::string folderOf(const std::string& path) {
  return path.substr(0, path.find_last_of('/') + 1);
}

/// Replaces a symbolic link by its target, which need not exist.
int followLinks(std::string& path) {
  std::array<char, PATH_MAX> content;
  for (int links = 0; links <= maximumLinks; ++links) {
    const ssize_t length = readlink(path.c_str(), content.data(), content.size());
    if (length < 0) return errno == EINVAL || errno == ENOENT ? 0 : errno;  // no link, or nothing at all
    const std::string target(content.data(), static_cast<std::size_t>(length));
    path = target.starts_with('/') ? std::string() : folderOf(path);
    path += target;
  }
  return ELOOP;
}

/// No call only reads the umask. The value in between gives no permission to others; only this function
/// creates files on several threads.
mode_t permissionsByUmask() {
  static std::mutex lock;
  const std::lock_guard guard(lock);
  const mode_t mask = umask(S_IRWXG | S_IRWXO);
  umask(mask);
  return permissionsOfNewFile & ~mask;
}

/// Renames a file unless there is one of the new name. Returns 0 or the error number.
int renameWithoutReplacing(const char* from, const char* to) {
#if defined(__linux__)
  if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL) return errno;  // EINVAL: the file system cannot do this
#endif
  if (link(from, to) != 0) return errno;
  static_cast<void>(unlink(from));
  return 0;
}

/// A temporary file in the folder of `target`. Removed unless it is renamed to `target`.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& target)
      : target_(target), path_(folderOf(target) + ".zelvo-XXXXXX") {}
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (cleanup_) unlink(path_.c_str());
  }

  /// Each step returns 0 or the error number.
  int create() {
    const SignalCleanup::Hold untilRecorded;
    file_ = Descriptor(mkostemp(path_.data(), O_CLOEXEC));
    if (!file_) return errno;
    cleanup_.emplace(path_.c_str());
    return 0;
  }

  int write(std::string_view bytes) { return writeAll(file_, bytes); }

  int copyPermissions(const std::optional<struct stat>& replaced) {
    mode_t wanted = permissionsByUmask();
    if (replaced) {
      wanted = replaced->st_mode & allPermissions;
      if (!copyOwners(*replaced)) wanted &= ~static_cast<mode_t>(S_IRWXG);
    }
    struct stat own = {};
    if (fstat(file_.number(), &own) != 0) return errno;
    if ((own.st_mode & allPermissions) == wanted || fchmod(file_.number(), wanted) == 0) return 0;
    // EPERM for an own file: the file system does not store permissions.
    return errno == EPERM ? 0 : errno;
  }

  int commit(ExistingFile existing) {
    if (fsync(file_.number()) != 0) return errno;
    const SignalCleanup::Hold whileRenamed;
    if (existing == ExistingFile::kept) {
      if (const int error = renameWithoutReplacing(path_.c_str(), target_.c_str()); error != 0) return error;
    } else if (std::rename(path_.c_str(), target_.c_str()) != 0) {
      return errno;
    }
    cleanup_.reset();
    return 0;
  }

 private:
  /// Returns false if the group cannot be set. Only a privileged process can set the owner; otherwise the new
  /// file belongs to the user.
  bool copyOwners(const struct stat& replaced) {
    constexpr auto unchanged = static_cast<uid_t>(-1);
    return fchown(file_.number(), replaced.st_uid, replaced.st_gid) == 0 ||
           fchown(file_.number(), unchanged, replaced.st_gid) == 0;
  }

  const std::string& target_;
  std::string path_;
  Descriptor file_;
  std::optional<SignalCleanup::Record> cleanup_;
};

/// Makes the new name survive a power failure. An error is ignored: after a power failure either the old or
/// the new file is complete.
void syncFolder(const std::string& folder) {
  const Descriptor opened(open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (opened) static_cast<void>(fsync(opened.number()));
}

int replaceFile(const std::string& path, const std::optional<struct stat>& replaced,
                const OutputContent& content, ExistingFile existing) {
  TemporaryFile file(path);
  int error = file.create();
  if (error == 0) error = content([&](std::string_view bytes) { return file.write(bytes); });
  if (error == 0) error = file.copyPermissions(replaced);
  if (error == 0) error = file.commit(existing);
  if (error == 0) syncFolder(folderOf(path));
  return error;
}

int writeInPlace(const std::string& path, const OutputContent& content) {
  const Descriptor file(open(path.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC));
  if (!file) return errno;
  struct stat opened = {};
  if (fstat(file.number(), &opened) != 0) return errno;
  // Created since the check: a regular file is never written in place.
  if (S_ISREG(opened.st_mode)) return EEXIST;
  return content([&](std::string_view bytes) { return writeAll(file, bytes); });
}

}  // namespace

int writeOutputFile(const std::string& path, std::string_view bytes, ExistingFile existing) {
  return writeOutputFile(
      path, [bytes](const WriteBytes& write) { return write(bytes); }, existing);
}

int writeOutputFile(const std::string& path, const OutputContent& content, ExistingFile existing) {
  // The kernel follows the links first: it refuses links of other users in shared folders.
  struct stat found = {};
  const bool exists = stat(path.c_str(), &found) == 0;
  if (!exists && errno != ENOENT) return errno;
  if (exists && existing == ExistingFile::kept) return EEXIST;
  if (exists && S_ISDIR(found.st_mode)) return EISDIR;
  if (exists && !S_ISREG(found.st_mode)) return writeInPlace(path, content);

  std::string target = path;
  if (const int error = followLinks(target); error != 0) return error;
  return replaceFile(target, exists ? std::optional(found) : std::nullopt, content, existing);
}

}  // namespace zelvo
