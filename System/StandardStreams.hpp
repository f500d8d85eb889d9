#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace zelvo {

/// A stream of bytes to be read to its end.
class Input {
 public:
  Input() = default;
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;
  virtual ~Input() = default;

  /// Reads at most `buffer.size()` bytes. Returns their count, 0 at the end, or nullopt after a failure.
  virtual std::optional<std::size_t> read(std::span<char> buffer) = 0;
};

/// The destination of the one response.
class Output {
 public:
  Output() = default;
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;
  virtual ~Output() = default;

  /// Writes all bytes. Returns false if that failed.
  virtual bool write(std::string_view bytes) = 0;
};

/// Makes a write to a closed pipe, or beyond a file-size limit, fail instead of ending the process by a
/// signal. Returns false if the operating system refuses.
bool ignoreSignalsOfWriting();

/// The columns of the terminal that is standard output; 0 if it is none, or does not tell.
std::size_t outputTerminalWidth();

/// Standard input, by plain system calls. The descriptor must be a blocking one.
class StandardInput final : public Input {
 public:
  std::optional<std::size_t> read(std::span<char> buffer) override;
};

/// Standard output, by plain system calls. The descriptor must be a blocking one; a regular file cannot be
/// written under a file-size limit of 0.
class StandardOutput final : public Output {
 public:
  bool write(std::string_view bytes) override;
};

}  // namespace zelvo
