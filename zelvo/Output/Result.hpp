#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace zelvo {

/// The exit status of the tool. With several files it is the highest.
enum class ExitStatus : int {
  success = 0,
  refused = 1,       ///< a document was refused, or a file could not be read or written
  usage = 2,         ///< invalid command line
  workerFailed = 3,  ///< a worker or another confined process could not be run, or failed
};

/// Why a command, or a step of one, has no result.
struct CommandError {
  ExitStatus status;
  std::string message;  ///< one sentence or more, without prefix and line feed; may quote untrusted bytes
  std::vector<std::string> hints = {};  ///< the same: what was found, or what helps
};

/// The error of a step that has no value; nullopt if it succeeded.
using Failure = std::optional<CommandError>;

/// A value, or the error in its place.
template <typename T>
class [[nodiscard]] Result {
 public:
  // NOLINTBEGIN(google-explicit-constructor): a function returns either.
  Result(T value) : state_(std::in_place_index<0>, std::move(value)) {}
  Result(CommandError error) : state_(std::in_place_index<1>, std::move(error)) {}
  // NOLINTEND(google-explicit-constructor)

  explicit operator bool() const { return state_.index() == 0; }

  /// The value. Throws `std::bad_variant_access` if there is none.
  T& operator*() & { return std::get<0>(state_); }
  const T& operator*() const& { return std::get<0>(state_); }
  T&& operator*() && { return std::get<0>(std::move(state_)); }
  T* operator->() { return &**this; }
  const T* operator->() const { return &**this; }

  /// The error. Throws `std::bad_variant_access` if there is a value.
  const CommandError& error() const { return std::get<1>(state_); }

 private:
  std::variant<T, CommandError> state_;
};

}  // namespace zelvo
