#include "zelvo/Execution/ProcessSetup.hpp"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

#include "System/SignalCleanup.hpp"

namespace zelvo {
namespace {

void openStandardStreams() {
  struct Stream {
    int number;
    int flags;  // opened in the wrong direction, so that using the stream is still an error
  };
  constexpr std::array<Stream, 3> streams = {
      {{STDIN_FILENO, O_WRONLY}, {STDOUT_FILENO, O_RDONLY}, {STDERR_FILENO, O_RDONLY}}};
  for (const auto [number, flags] : streams) {
    // `open` takes the lowest free number, and all below this one are open.
    if (fcntl(number, F_GETFD) < 0) static_cast<void>(open("/dev/null", flags));
  }
}

}  // namespace

void setUpProcess() {
  openStandardStreams();
  // Neither fails for a signal that exists.
  static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
  static_cast<void>(std::signal(SIGCHLD, SIG_DFL));
  SignalCleanup::install();
}

}  // namespace zelvo
