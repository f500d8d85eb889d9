#include "zelvo/Batch/BatchFiles.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <utility>

#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "Text/ASCII.hpp"
#include "Text/Digest.hpp"

namespace zelvo {
namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 3> workbookEndings = {".xlsx", ".xlsm", ".xltx"};
constexpr std::string_view cleanedEnding = ".xlsx";
/// Spreadsheet programs write such a file beside a workbook that is open.
constexpr std::string_view lockFilePrefix = "~$";

std::string_view endingOf(std::string_view name) {
  const std::string lower = ASCII::lowercased(name);
  const auto ending =
      std::ranges::find_if(workbookEndings, [&](std::string_view e) { return lower.ends_with(e); });
  return ending == workbookEndings.end() ? "" : *ending;
}

bool isWorkbookName(const std::string& name) {
  return !endingOf(name).empty() && !name.starts_with(lockFilePrefix);
}

CommandError unreadable(const std::string& what, const std::string& path, const std::error_code& error) {
  return {ExitStatus::refused, "The " + what + " cannot be read: " + path + ": " + error.message()};
}

CommandError listUnreadable(const std::string& name) {
  return unreadable("list of files", name, {errno, std::generic_category()});
}

/// Returns 0 or the error number.
int copy(std::FILE* from, std::FILE* to) {
  std::array<char, 65536> chunk;
  while (const std::size_t count = std::fread(chunk.data(), 1, chunk.size(), from)) {
    if (std::fwrite(chunk.data(), 1, count, to) != count) return errno;
  }
  return std::ferror(from) != 0 || std::fflush(to) != 0 ? errno : 0;
}

}  // namespace

void BatchFiles::CloseFile::operator()(std::FILE* file) const {
  if (file != stdin) static_cast<void>(std::fclose(file));
}

Result<BatchFiles> BatchFiles::open(const BatchArguments& arguments, bool mustRewind) {
  const std::string& name = arguments.filesFrom;
  if (name.empty()) return BatchFiles(arguments, nullptr);
  List list(name == "-" ? stdin : std::fopen(name.c_str(), "rbe"));
  if (!list) return listUnreadable(name);
  if (mustRewind && std::fseek(list.get(), 0, SEEK_CUR) != 0) {
    List spooled(std::tmpfile());
    if (!spooled || copy(list.get(), spooled.get()) != 0) return listUnreadable(name);
    std::rewind(spooled.get());
    list = std::move(spooled);
  }
  return BatchFiles(arguments, std::move(list));
}

BatchFiles::BatchFiles(const BatchArguments& arguments, List list)
    : paths_(arguments.paths),
      list_(std::move(list)),
      separator_(arguments.nulSeparated ? '\0' : '\n'),
      listName_(arguments.filesFrom) {}

void BatchFiles::rewind() {
  nextPath_ = 0;
  folders_.clear();
  if (list_) std::rewind(list_.get());
}

std::optional<BatchFile> BatchFiles::next() {
  while (true) {
    if (auto file = nextOfFolders()) return file;
    std::optional<std::string> name = nextName();
    if (!name) return std::nullopt;
    std::error_code ignored;  // opening the file will tell
    if (!fs::is_directory(*name, ignored)) return BatchFile{*name, *name, std::nullopt};
    root_ = *name;
    std::optional<BatchFile> unreadable;
    enter(root_, unreadable);
    if (unreadable) return unreadable;
  }
}

std::optional<std::string> BatchFiles::nextName() {
  if (nextPath_ < paths_.size()) return paths_[nextPath_++];
  while (list_) {
    char* line = nullptr;
    std::size_t capacity = 0;
    const ssize_t length = getdelim(&line, &capacity, separator_, list_.get());
    const std::unique_ptr<char, decltype(&std::free)> owned(line, &std::free);
    if (length < 0) {
      if (std::ferror(list_.get()) != 0) error_ = listUnreadable(listName_);
      return std::nullopt;
    }
    std::string name(line, static_cast<std::size_t>(length));
    if (name.ends_with(separator_)) name.pop_back();
    if (!name.empty()) return name;
  }
  return std::nullopt;
}

std::optional<BatchFile> BatchFiles::nextOfFolders() {
  while (!folders_.empty()) {
    fs::directory_iterator& folder = folders_.back();
    if (folder == fs::directory_iterator()) {
      folders_.pop_back();
      continue;
    }
    const fs::directory_entry entry = *folder;
    std::error_code error;
    folder.increment(error);
    if (error) {
      folders_.pop_back();
      const std::string path = entry.path().parent_path().string();
      return BatchFile{path, path, unreadable("folder", path, error)};
    }
    const fs::file_status status = entry.symlink_status(error);
    std::optional<BatchFile> notRead;
    if (fs::is_directory(status)) enter(entry.path(), notRead);
    if (notRead) return notRead;
    if (!fs::is_regular_file(status) || !isWorkbookName(entry.path().filename().string())) continue;
    return BatchFile{entry.path().string(), entry.path().lexically_relative(root_).string(), std::nullopt};
  }
  return std::nullopt;
}

void BatchFiles::enter(const fs::path& folder, std::optional<BatchFile>& unreadableFolder) {
  std::error_code error;
  fs::directory_iterator entries(folder, error);
  if (!error) {
    folders_.push_back(std::move(entries));
    return;
  }
  unreadableFolder =
      BatchFile{folder.string(), folder.string(), unreadable("folder", folder.string(), error)};
}

NameDigest nameDigest(std::string_view name) {
  const Digest::SHA256 whole = Digest::sha256Bytes(bytesOf(name));
  NameDigest digest;
  std::copy_n(whole.begin(), digest.size(), digest.begin());
  return digest;
}

bool isInShard(std::string_view path, std::int64_t index, std::int64_t count) {
  std::int64_t remainder = 0;
  // At most 2^31 shards (BatchArguments): the product fits.
  for (const std::uint8_t byte : Digest::sha256Bytes(bytesOf(path)))
    remainder = (remainder * 256 + byte) % count;
  return remainder == index - 1;
}

std::optional<std::string> cleanedName(std::string_view relative) {
  const fs::path path(relative);
  if (path.is_absolute() || std::ranges::find(path, "..") != path.end()) return std::nullopt;
  std::string name = path.lexically_normal().string();
  name.resize(name.size() - endingOf(name).size());
  return name + std::string(cleanedEnding);
}

}  // namespace zelvo
