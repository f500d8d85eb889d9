#include "System/StandardStreams.hpp"

#include <cerrno>
#include <csignal>
#include <sys/ioctl.h>
#include <unistd.h>

namespace zelvo {

bool ignoreSignalsOfWriting() {
  return std::signal(SIGPIPE, SIG_IGN) != SIG_ERR && std::signal(SIGXFSZ, SIG_IGN) != SIG_ERR;
}

std::size_t outputTerminalWidth() {
  winsize size = {};
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

std::optional<std::size_t> StandardInput::read(std::span<char> buffer) {
  ssize_t count = 0;
  do {
    count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
  } while (count < 0 && errno == EINTR);
  if (count < 0) return std::nullopt;
  return static_cast<std::size_t>(count);
}

bool StandardOutput::write(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(STDOUT_FILENO, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    // After a write of 0 bytes, retrying might not end.
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace zelvo
