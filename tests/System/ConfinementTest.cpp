// Owns the confinement as a process meets it: what kills, the kernel's status, and filters of others.

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <functional>
#include <linux/futex.h>
#include <poll.h>
#include <string>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <tuple>
#include <unistd.h>

#include <gtest/gtest.h>

#include "Sandbox/Policy.hpp"
#include "Support/Texts.hpp"
#include "System/Confinement.hpp"
#include "System/ForeignFilter.hpp"
#include "System/ForkedChild.hpp"
#include "System/SandboxProbes.hpp"
#include "System/SystemCallFilters.hpp"

namespace zelvo {
namespace {

/// Confines this process as a worker is.
bool confine() {
  const Confinement confinement = enterConfinement();
  return applySandboxPolicy(*confinement.entitlements, *confinement.limits).empty();
}

/// The answer to the question in a child, since a filter cannot be unloaded.
bool holdsInChild(const std::function<bool()>& question) {
  const ChildResult result = runForkedChild([&] { return question() ? 0 : 1; }, 0);
  EXPECT_EQ(result.outcome, ChildOutcome::exited);
  return result.code == 0;
}

/// Something that a confined program must be killed for, and the system call in which it must happen.
struct ForbiddenAct {
  std::string_view name;
  long systemCall;
  void (*commit)();
};

char scratch[4096];

constexpr ForbiddenAct forbiddenActs[] = {
    {"open-file", SYS_openat, [] { std::ignore = open("/etc/passwd", O_RDONLY); }},
    {"create-file", SYS_openat, [] { std::ignore = open("/tmp/x", O_WRONLY | O_CREAT, 0600); }},
    {"list-folder", SYS_getdents64, [] { syscall(SYS_getdents64, 0, scratch, sizeof scratch); }},
    {"remove-file", SYS_unlinkat, [] { unlinkat(AT_FDCWD, "/tmp/x", 0); }},
    {"open-socket", SYS_socket, [] { socket(AF_INET, SOCK_STREAM, 0); }},
    {"start-process", SYS_clone, [] { std::ignore = fork(); }},
    {"become-program", SYS_execve, [] { execl("/bin/true", "true", nullptr); }},
    {"raise-limit", SYS_prlimit64, [] { syscall(SYS_prlimit64, 0, RLIMIT_CPU, scratch, nullptr); }},
    {"ask-limit", SYS_prlimit64, [] { syscall(SYS_prlimit64, 0, RLIMIT_CPU, nullptr, scratch); }},
    {"map-code", SYS_mmap,
     [] { std::ignore = mmap(nullptr, 4096, PROT_READ | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0); }},
    {"map-file", SYS_mmap, [] { std::ignore = mmap(nullptr, 4096, PROT_READ, MAP_PRIVATE, 0, 0); }},
    {"make-code", SYS_mprotect, [] { mprotect(scratch, 1, PROT_READ | PROT_EXEC); }},
    {"move-memory-onto-other", SYS_mremap,
     [] { mremap(scratch, 4096, 4096, MREMAP_MAYMOVE | MREMAP_FIXED, scratch); }},
    {"trace", SYS_ptrace, [] { ptrace(PTRACE_TRACEME, 0, nullptr, nullptr); }},
    {"load-filter", SYS_seccomp, [] { syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, 0, nullptr); }},
    {"load-filter-the-old-way", SYS_prctl, [] { prctl(PR_SET_SECCOMP, 2L, 0L, 0L, 0L); }},
    {"read-other-descriptor", SYS_read, [] { std::ignore = read(3, scratch, 1); }},
    {"read-output", SYS_read, [] { std::ignore = read(1, scratch, 1); }},
    {"write-input", SYS_write, [] { std::ignore = write(0, scratch, 1); }},
    {"wait-for-lock", SYS_futex, [] { syscall(SYS_futex, scratch, FUTEX_WAIT_PRIVATE, 0, nullptr); }},
    // The raw call: the library asks the clock without entering the kernel.
    {"ask-time", SYS_clock_gettime, [] { syscall(SYS_clock_gettime, CLOCK_REALTIME, scratch); }},
    {"draw-random", SYS_getrandom, [] { syscall(SYS_getrandom, scratch, 8, 0); }},
    {"signal", SYS_kill, [] { kill(1, 0); }},
    {"queue-work", SYS_io_uring_setup, [] { syscall(SYS_io_uring_setup, 1, scratch); }},
#if defined(__x86_64__)
    {"call-as-x32", SYS_read | 0x4000'0000, [] { syscall(SYS_read | 0x4000'0000, 0, scratch, 1); }},
#endif
};

/// How a traced process ended.
struct TracedEnd {
  int status;  ///< of `waitpid`
  // At its last system call:
  std::uint64_t systemCall;
  std::string kernelStatus;   ///< "Name:\tvalue" lines
  bool hasClosedDescriptors;  ///< those that it inherited
};

/// Runs the act in a child under a tracer, with nothing on its standard streams.
TracedEnd runTraced(const std::function<void()>& act) {
  std::array<int, 2> leaked = {};
  EXPECT_EQ(pipe(leaked.data()), 0);
  const pid_t child = fork();
  if (child == 0) {
    const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
      dup2(nothing, stream);
    dup2(leaked[1], STDERR_FILENO + 1);
    ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    static_cast<void>(raise(SIGSTOP));
    act();
    _exit(1);
  }
  close(leaked[1]);
  TracedEnd end = {};
  while (waitpid(child, &end.status, 0) == child && WIFSTOPPED(end.status)) {
    ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    const int signal = WSTOPSIG(end.status);
    const bool isSystemCall = signal == (SIGTRAP | 0x80);
    __ptrace_syscall_info info = {};
    if (isSystemCall) ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof info, &info);
    if (info.op == PTRACE_SYSCALL_INFO_ENTRY) {
      pollfd ofLeaked = {leaked[0], POLLIN, 0};
      end.hasClosedDescriptors = poll(&ofLeaked, 1, 0) == 1;
      end.systemCall = info.entry.nr;
      end.kernelStatus = testing::contentOf("/proc/" + std::to_string(child) + "/status");
    }
    ptrace(PTRACE_SYSCALL, child, nullptr, isSystemCall || signal == SIGSTOP ? 0 : signal);
  }
  close(leaked[0]);
  return end;
}

TEST(Confinement, KillsAtTheForbiddenSystemCall) {
  for (const auto& act : forbiddenActs) {
    SCOPED_TRACE(act.name);
    const TracedEnd end = runTraced([&] {
      if (confine()) act.commit();
    });
    EXPECT_TRUE(WIFSIGNALED(end.status) && WTERMSIG(end.status) == SIGSYS) << "status " << end.status;
    EXPECT_EQ(end.systemCall, static_cast<std::uint64_t>(act.systemCall));
    EXPECT_TRUE(end.hasClosedDescriptors);
    for (const char* line : {"\nSeccomp_filters:\t2\n", "\nNoNewPrivs:\t1\n"})
      EXPECT_NE(end.kernelStatus.find(line), std::string::npos) << end.kernelStatus;
    constexpr unsigned long long signalsOfWriting = 1ULL << (SIGPIPE - 1) | 1ULL << (SIGXFSZ - 1);
    const auto ignored = end.kernelStatus.find("SigIgn:\t") + 8;
    EXPECT_EQ(std::stoull(end.kernelStatus.substr(ignored), nullptr, 16) & signalsOfWriting,
              signalsOfWriting);
  }
}

TEST(Confinement, DetectsAPretendedSeal) {
  EXPECT_TRUE(holdsInChild([] {
    const Confinement confinement = enterConfinement();
    return confinement.failure.empty() && testing::loadForeignFilter({{SYS_seccomp, 0}}) &&
           !confinement.limits->seal();
  }));
}

TEST(SandboxProbes, RejectErrorNumbersOfOtherFilters) {
  constexpr std::string_view keys[] = {entitlement::appSandbox,        entitlement::networkClient,
                                       entitlement::networkServer,     entitlement::inherit,
                                       entitlement::userSelectedFiles, entitlement::appleEvents};
  for (const std::string_view key : keys)
    EXPECT_FALSE(everyProbeIsRefusedByUs(key)) << key << " without any filter";
  for (const unsigned answer : {0U, static_cast<unsigned>(EPERM), static_cast<unsigned>(ENOSYS)}) {
    EXPECT_TRUE(holdsInChild([&] {
      std::vector<testing::ForeignAnswer> answers;
      for (const long call : {SYS_openat, SYS_connect, SYS_bind, SYS_fcntl, SYS_unlinkat, SYS_kill})
        answers.push_back({call, answer});
      return testing::loadForeignFilter(answers) && std::ranges::none_of(keys, everyProbeIsRefusedByUs);
    })) << answer;
  }
}

TEST(SandboxProbes, TellOurFilterFromOneThatPretends) {
  // The sandbox entitlement if it agrees with the success of confinement.
  const auto sandboxAbove = [](const std::vector<testing::ForeignAnswer>& answers) {
    if (!testing::loadForeignFilter(answers)) return EntitlementValue::other;
    const Confinement confinement = enterConfinement();
    const auto value = confinement.entitlements->value(entitlement::appSandbox);
    const bool isGranted = value == EntitlementValue::granted;
    return isGranted == confinement.failure.empty() ? value : EntitlementValue::other;
  };
  EXPECT_TRUE(holdsInChild([&] {
    return sandboxAbove({{SYS_openat, 0}, {SYS_connect, 0}, {SYS_kill, EPERM}}) == EntitlementValue::granted;
  }));
  EXPECT_TRUE(holdsInChild([&] {
    return sandboxAbove({{SYS_connect, refusedByUs}}) == EntitlementValue::absent;
  })) << "an inherited filter that imitates ours";
}

}  // namespace
}  // namespace zelvo
