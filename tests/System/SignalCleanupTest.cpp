// Owns the cleanup by a signal handler: no child and no temporary file remains.

#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "Support/SystemCallFailure.hpp"
#include "Support/TemporaryFolder.hpp"
#include "System/ChildProcess.hpp"
#include "System/ForkedChild.hpp"
#include "System/OutputFile.hpp"
#include "System/SignalCleanup.hpp"

namespace zelvo {
namespace {

/// The wait status of a process that installs the cleanup and then runs `act`. Its orphans become children of
/// the test.
int endOf(const std::function<void()>& act) {
  prctl(PR_SET_CHILD_SUBREAPER, 1);
  if (fork() == 0) {
    SignalCleanup::install();
    act();
    _exit(0);
  }
  int status = 0;
  wait(&status);
  return status;
}

TEST(SignalCleanup, LeavesNoChild) {
  for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
    const std::string script = "kill -" + std::to_string(signal) + " $PPID; exec sleep 60";
    const std::function<void()> acts[] = {
        [&] {
          runChildProcess({"/bin/sh", {"-c", script}}, {}, {0, std::chrono::seconds(60)});
        },
        [&] { runForkedChild([&] { return kill(getppid(), signal) + pause(); }, 0); },
    };
    for (const auto& act : acts) {
      EXPECT_EQ(endOf(act), signal);
      EXPECT_FALSE(testing::leavesChild());
    }
  }
}

TEST(SignalCleanup, LeavesNoFile) {
  for (const int signal : {SIGHUP, SIGINT, SIGTERM, SIGPIPE}) {
    const testing::TemporaryFolder folder;
    static volatile std::sig_atomic_t raised = 0;
    raised = signal;
    const int end = endOf([&] {
      // The limit is met in the middle of writing.
      static_cast<void>(std::signal(SIGXFSZ, [](int) { static_cast<void>(raise(raised)); }));
      const rlimit limit = {100, 100};
      setrlimit(RLIMIT_FSIZE, &limit);
      writeOutputFile(folder.path("file"), std::string(200, 'x'));
    });
    EXPECT_EQ(end, signal);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path("")));
  }
}

TEST(SignalCleanup, LeavesIgnoredSignalsIgnored) {
  EXPECT_EQ(endOf([] { static_cast<void>(raise(SIGTERM)); }), SIGTERM);
  const auto handler = std::signal(SIGHUP, SIG_IGN);
  EXPECT_EQ(endOf([] { static_cast<void>(raise(SIGHUP)); }), 0);
  static_cast<void>(std::signal(SIGHUP, handler));
}

}  // namespace
}  // namespace zelvo
