#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>

#include "System/Descriptor.hpp"

namespace zelvo {

/// A file that grows at its end, by one process at a time; or standard output.
class AppendFile {
 public:
  static AppendFile standardOutput();

  /// Opens the file, or creates an empty one, and locks it until this object is destroyed. The error is
  /// `std::errc::operation_would_block` while another process has locked it.
  static AppendFile open(const std::string& path, std::error_code& error);

  /// In bytes; 0, with `error` set, if it cannot be asked for.
  std::uint64_t size(std::error_code& error) const;
  bool isTerminal() const;

  /// Writes all bytes at the end, in one call if the system takes them.
  std::error_code append(std::string_view bytes) const;

 private:
  explicit AppendFile(int number) : file_(number) {}

  Descriptor file_;
};

}  // namespace zelvo
