// Starts a worker COUNT times, JOBS at once, feeds each a ready-made request and discards the answer: the
// fastest that a host of one process a request can be. Prints the answers a second.
//
//   spawn WORKER REQUEST.json COUNT JOBS

#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

struct Pipe {
  std::array<int, 2> ends = {-1, -1};
  bool open() { return pipe2(ends.data(), O_CLOEXEC) == 0; }
};

/// False unless the worker answered. A request is smaller than a pipe holds, so that writing never waits.
bool runOnce(const char* worker, const std::string& request) {
  Pipe input;
  Pipe output;
  if (!input.open() || !output.open()) return false;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input.ends[0], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output.ends[1], STDOUT_FILENO);
  std::string name = worker;
  const std::array<char*, 2> arguments = {name.data(), nullptr};
  const std::array<char*, 1> environment = {nullptr};
  pid_t child = 0;
  const int error = posix_spawn(&child, worker, &actions, nullptr, arguments.data(), environment.data());
  posix_spawn_file_actions_destroy(&actions);
  close(input.ends[0]);
  close(output.ends[1]);
  const bool isSent =
      write(input.ends[1], request.data(), request.size()) == static_cast<ssize_t>(request.size());
  close(input.ends[1]);
  std::array<char, 65536> answer;
  while (read(output.ends[0], answer.data(), answer.size()) > 0) {
  }
  close(output.ends[0]);
  int status = 1;
  return error == 0 && waitpid(child, &status, 0) == child && status == 0 && isSent;
}

}  // namespace

int main(int argc, char** argv) {
  constexpr int argumentCount = 5;
  if (argc != argumentCount) {
    static_cast<void>(std::fputs("usage: spawn WORKER REQUEST.json COUNT JOBS\n", stderr));
    return 2;
  }
  std::ifstream file(argv[2], std::ios::binary);
  const std::string request{std::istreambuf_iterator<char>(file), {}};
  const long count = std::strtol(argv[3], nullptr, 10);
  const long jobs = std::strtol(argv[4], nullptr, 10);

  std::atomic<long> next = 0;
  std::atomic<bool> isGood = true;
  const auto start = std::chrono::steady_clock::now();
  {
    std::vector<std::jthread> threads;
    for (long i = 0; i < jobs; ++i) {
      threads.emplace_back([&] {
        while (next++ < count)
          if (!runOnce(argv[1], request)) isGood = false;
      });
    }
  }
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
  std::printf("%.1f\n", static_cast<double>(count) / elapsed.count());
  return isGood ? 0 : 1;
}
