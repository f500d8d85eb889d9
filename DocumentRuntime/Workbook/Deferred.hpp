#pragma once

#include <utility>
#include <variant>

#include "DocumentRuntime/Errors/DocumentError.hpp"

namespace zelvo {

/// The result of reading a part: a value, or the error to throw when the value is requested. Parts are read
/// in the order of their names, but the first error in the order of the rules must be thrown.
template <typename Value>
class Deferred {
 public:
  /// Runs `read` and keeps its value or its `DocumentError`. Other exceptions are not caught.
  template <typename Read>
  static Deferred of(const Read& read) {
    try {
      return Deferred(read());
    } catch (const DocumentError& error) {
      return Deferred(error);
    }
  }

  /// Returns the value, or throws the error.
  const Value& get() const {
    if (const auto* error = std::get_if<DocumentError>(&outcome_)) throw *error;
    return *std::get_if<Value>(&outcome_);
  }
  /// The same, and moves the value.
  Value take() {
    static_cast<void>(get());
    return std::move(*std::get_if<Value>(&outcome_));
  }

 private:
  explicit Deferred(Value value) : outcome_(std::move(value)) {}
  explicit Deferred(DocumentError error) : outcome_(std::move(error)) {}

  std::variant<Value, DocumentError> outcome_;
};

}  // namespace zelvo
