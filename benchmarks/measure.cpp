// Runs commands alternately, A B A B …, each with a file as standard input, discards their output, and prints
// one line per run: which command, status, user and system CPU seconds, wall seconds, peak memory in KiB,
// page faults.
//
//   measure RUNS INPUT -- COMMAND [ARG...] [-- COMMAND [ARG...]]...
//
// Small and static on purpose: a child's peak memory starts at its parent's.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

double seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}

void run(std::size_t index, char* const* command, const char* input) {
  const auto start = std::chrono::steady_clock::now();
  const pid_t child = vfork();
  if (child == 0) {
    // Async-signal-safe calls only: the parent's memory is shared until exec.
    dup2(open(input, O_RDONLY | O_CLOEXEC), STDIN_FILENO);
    dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDOUT_FILENO);
    execv(command[0], command);
    _exit(127);
  }
  int status = 0;
  rusage usage{};
  wait4(child, &status, 0, &usage);
  const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
  std::printf("%zu %d %.6f %.6f %.6f %ld %ld\n", index, status, seconds(usage.ru_utime),
              seconds(usage.ru_stime), wall.count(), usage.ru_maxrss, usage.ru_minflt + usage.ru_majflt);
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<char**> commands;
  for (int i = 3; i < argc; ++i) {
    if (std::strcmp(argv[i], "--") != 0) continue;
    argv[i] = nullptr;
    commands.push_back(&argv[i + 1]);
  }
  if (commands.empty()) {
    static_cast<void>(
        std::fputs("usage: measure RUNS INPUT -- COMMAND [ARG...] [-- COMMAND [ARG...]]...\n", stderr));
    return 2;
  }
  const long runs = std::strtol(argv[1], nullptr, 10);
  for (long i = 0; i < runs; ++i) {
    for (std::size_t j = 0; j < commands.size(); ++j)
      run(j, commands[j], argv[2]);
  }
}
