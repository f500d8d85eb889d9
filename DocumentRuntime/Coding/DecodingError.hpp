#pragma once

#include <cstddef>
#include <exception>
#include <string>

namespace zelvo {

/// A JSON text is malformed, or does not have the structure of the record.
///
/// The texts are human-readable. They are cut, since they can hold keys of the JSON, which may be as long as
/// the JSON itself.
class DecodingError : public std::exception {
 public:
  static constexpr std::size_t maximumPathBytes = 300;
  static constexpr std::size_t maximumMessageBytes = 200;

  /// `path` is the path from the root to the invalid value ("rows[3][0].value"); empty for the root itself.
  /// Both are UTF-8.
  explicit DecodingError(std::string message, std::string path = {});

  const std::string& message() const { return message_; }
  const std::string& path() const { return path_; }

  /// The message, after the path if there is one. UTF-8.
  const char* what() const noexcept override { return description_.c_str(); }

 private:
  std::string message_;
  std::string path_;
  std::string description_;
};

}  // namespace zelvo
