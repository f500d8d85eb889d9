#pragma once

#include <exception>
#include <string>
#include <utility>

namespace zelvo {

/// A JSON text that is malformed, or that does not have the shape of the record it should hold.
class DecodingError : public std::exception {
 public:
  /// `path` leads from the root to the value at fault ("rows[3][0].value"); empty for the root itself.
  explicit DecodingError(std::string message, std::string path = {})
      : message_(std::move(message)),
        path_(std::move(path)),
        description_(path_.empty() ? message_ : path_ + ": " + message_) {}

  const std::string& message() const { return message_; }
  const std::string& path() const { return path_; }

  /// The message, with the path before it where there is one. UTF-8.
  const char* what() const noexcept override { return description_.c_str(); }

 private:
  std::string message_;
  std::string path_;
  std::string description_;
};

}  // namespace zelvo
