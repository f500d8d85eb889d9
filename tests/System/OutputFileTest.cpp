// Owns writing an output file: what is replaced and kept, and the state after a failure.

#include <cerrno>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

#include "Support/Cases.hpp"
#include "Support/SystemCallFailure.hpp"
#include "Support/TemporaryFolder.hpp"
#include "Support/Texts.hpp"
#include "System/ForkedChild.hpp"
#include "System/OutputFile.hpp"

namespace zelvo {
namespace {

namespace fs = std::filesystem;
using testing::TemporaryFolder;

struct stat statusOf(const std::string& path) {
  struct stat status = {};
  lstat(path.c_str(), &status);
  return status;
}

unsigned permissionsOf(const std::string& path) {
  return statusOf(path).st_mode & 07777U;
}

std::ptrdiff_t filesIn(const TemporaryFolder& folder) {
  return std::distance(fs::directory_iterator(folder.path("")), {});
}

TEST(OutputFile, ReplacesFilesAndFollowsLinks) {
  const struct {
    const char* written;  // in a folder with these: file, link -> file, chain -> link, dangling -> new,
    std::string content;  // circle -> circle, folder, up -> ../NAME OF THE FOLDER/file
    int error;
  } rows[] = {
      {"other", "other", 0},     {"file", "file", 0},        {"link", "file", 0},   {"chain", "file", 0},
      {"up", "file", 0},         {"dangling", "new", 0},     {"circle", "", ELOOP}, {"folder", "", EISDIR},
      {"none/file", "", ENOENT}, {"file/file", "", ENOTDIR},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.written);
    const TemporaryFolder folder;
    folder.write("file", "old");
    const std::string own = fs::path(folder.path("")).parent_path().filename();
    for (const auto& [link, target] : testing::cases<2>(
             "link => file ; chain => link ; dangling => new ; circle => circle ; up => ../" + own + "/file"))
      fs::create_symlink(target, folder.path(link));
    fs::create_directory(folder.path("folder"));
    const auto oldNode = statusOf(folder.path("file")).st_ino;
    const std::ptrdiff_t before = filesIn(folder);

    EXPECT_EQ(writeOutputFile(folder.path(row.written), "content"), row.error);
    const bool isReplaced = row.content == "file";
    EXPECT_EQ(filesIn(folder), before + (row.error != 0 || isReplaced ? 0 : 1));
    EXPECT_EQ(testing::contentOf(folder.path("file")), isReplaced ? "content" : "old");
    EXPECT_EQ(statusOf(folder.path("file")).st_ino != oldNode, isReplaced) << "written in place";
    if (!row.content.empty()) {
      EXPECT_EQ(testing::contentOf(folder.path(row.content)), "content");
    }
    for (const char* link : {"link", "chain", "dangling", "circle", "up"})
      EXPECT_TRUE(fs::is_symlink(folder.path(link))) << link;
  }
}

TEST(OutputFile, SetsPermissions) {
  const TemporaryFolder folder;
  const mode_t before = umask(027);
  EXPECT_EQ(writeOutputFile(folder.path("new"), "x"), 0);
  EXPECT_EQ(permissionsOf(folder.path("new")), 0640U);
  for (const mode_t mode : {0600U, 0644U, 0660U, 0400U}) {
    const std::string path = folder.write(std::to_string(mode), "old");
    chmod(path.c_str(), mode);
    EXPECT_EQ(writeOutputFile(path, "x"), 0);
    EXPECT_EQ(permissionsOf(path), mode);
  }
  EXPECT_EQ(umask(before), 027U);
}

// The members of a group that the new file cannot have must not be exchanged for those of another.
TEST(OutputFile, KeepsTheGroupOrRemovesItsPermissions) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can make files of others";
  constexpr uid_t unprivilegedUser = 65534;
  const TemporaryFolder folder;
  chmod(folder.path("").c_str(), 0777);
  const std::string path = folder.write("file", "old");
  ASSERT_EQ(chown(path.c_str(), 2, 1) | chmod(path.c_str(), 0664) | writeOutputFile(path, "x"), 0);
  EXPECT_EQ(statusOf(path).st_uid, 2U);
  EXPECT_EQ(statusOf(path).st_gid, 1U);
  EXPECT_EQ(permissionsOf(path), 0664U);

  const auto unprivileged = [&] {
    return setgid(unprivilegedUser) != 0 || setuid(unprivilegedUser) != 0 ? 99 : writeOutputFile(path, "y");
  };
  ASSERT_EQ(runForkedChild(unprivileged, 0).code, 0);
  EXPECT_EQ(statusOf(path).st_gid, unprivilegedUser);
  EXPECT_EQ(permissionsOf(path), 0604U);
}

TEST(OutputFile, WritesOtherThanRegularFilesInPlace) {
  const TemporaryFolder folder;
  EXPECT_EQ(writeOutputFile("/dev/null", "content"), 0);
  fs::create_symlink("/dev/full", folder.path("full"));
  EXPECT_EQ(writeOutputFile(folder.path("full"), "content"), ENOSPC);
  const std::string fifo = folder.path("fifo");
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  std::string received;
  std::thread reader([&] { received = testing::contentOf(fifo); });
  EXPECT_EQ(writeOutputFile(fifo, std::string(100'000, 'x')), 0);
  reader.join();
  EXPECT_EQ(received.size(), 100'000U);
  EXPECT_TRUE(fs::is_fifo(fifo));
  EXPECT_EQ(filesIn(folder), 2);
}

TEST(OutputFile, KeepsAnExistingFileOnRequest) {
  const TemporaryFolder folder;
  const std::string path = folder.path("file");
  // The second one appears while the first is written.
  const auto writeTwo = [&](const WriteBytes& write) {
    EXPECT_EQ(writeOutputFile(path, "first", ExistingFile::kept), 0);
    return write("second");
  };
  for (const char* failing : {"", "renameat2"}) {
    SCOPED_TRACE(failing);
    const testing::FailingCall unsupported(failing, EINVAL, 0);
    fs::remove(path);
    EXPECT_EQ(writeOutputFile(path, writeTwo, ExistingFile::kept), EEXIST);
    EXPECT_EQ(writeOutputFile(path, "third", ExistingFile::kept), EEXIST);
    EXPECT_EQ(testing::contentOf(path), "first");
    EXPECT_EQ(filesIn(folder), 1);
  }
}

TEST(OutputFile, SurvivesSystemCallsThatFail) {
  const struct {
    const char* call;
    int error;
    std::size_t skipped;
    int expected;
  } rows[] = {
      {"mkostemp", EACCES, 0, EACCES}, {"write", ENOSPC, 0, ENOSPC},
      {"write", EINTR, 0, 0},          {"write", testing::FailingCall::isShort, 0, 0},
      {"fchmod", EIO, 0, EIO},         {"fchmod", EPERM, 0, 0},  // a file system without permissions
      {"fsync", EIO, 0, EIO},          {"fsync", EIO, 1, 0},     // of the folder, after the file is replaced
      {"rename", EXDEV, 0, EXDEV},
  };
  const std::size_t descriptors = testing::openDescriptors();
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.call) + " " + std::to_string(row.error));
    const TemporaryFolder folder;
    const std::string path = folder.write("file", "old");
    const testing::FailingCall failing(row.call, row.error, row.skipped);
    EXPECT_EQ(writeOutputFile(path, "new"), row.expected);
    EXPECT_TRUE(failing.hasFailed());
    EXPECT_EQ(testing::contentOf(path), row.expected == 0 ? "new" : "old");
    EXPECT_EQ(filesIn(folder), 1);
    EXPECT_EQ(testing::openDescriptors(), descriptors);
  }
}

}  // namespace
}  // namespace zelvo
