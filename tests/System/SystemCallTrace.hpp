#pragma once

#include <csignal>
#include <cstdint>
#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zelvo::testing {

/// How a traced program ended.
struct TracedEnd {
  int status;                    ///< as `waitpid` gives it
  std::uint64_t lastSystemCall;  ///< the one that it entered last
};

/// Runs a program with one argument under a tracer, with nothing on its input and output.
inline TracedEnd runTraced(const char* program, const char* argument) {
  const pid_t child = fork();
  if (child == 0) {
    const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
      dup2(nothing, stream);
    }
    ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    execl(program, program, argument, nullptr);
    _exit(127);
  }
  TracedEnd end = {};
  int passedOn = 0;
  bool isFirstStop = true;
  while (waitpid(child, &end.status, 0) == child && WIFSTOPPED(end.status)) {
    const int signal = WSTOPSIG(end.status);
    const bool isSystemCall = signal == (SIGTRAP | 0x80);
    if (isFirstStop) {
      ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
      isFirstStop = false;
    } else if (isSystemCall) {
      __ptrace_syscall_info info = {};
      ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof info, &info);
      if (info.op == PTRACE_SYSCALL_INFO_ENTRY) end.lastSystemCall = info.entry.nr;
    } else {
      passedOn = signal;
    }
    ptrace(PTRACE_SYSCALL, child, nullptr, passedOn);
    passedOn = 0;
  }
  return end;
}

}  // namespace zelvo::testing
