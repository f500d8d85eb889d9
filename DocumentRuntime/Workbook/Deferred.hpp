#pragma once

#include <utility>
#include <variant>

#include "DocumentRuntime/Errors/DocumentError.hpp"

namespace zelvo {

/// What reading a part gave: a value, or the error to throw when the value is asked for. Parts are read as
/// they pass, in the order of their names, but the first failure that a caller sees must be that of the first
/// rule, so errors wait here for their turn.
template <typename Value>
class Deferred {
 public:
  /// Runs `read` and keeps its value or its `DocumentError`; everything else passes through.
  template <typename Read>
  static Deferred of(const Read& read) {
    try {
      return Deferred(read());
    } catch (const DocumentError& error) {
      return Deferred(error);
    }
  }

  /// The value, or its error thrown.
  const Value& get() const {
    if (const auto* error = std::get_if<DocumentError>(&outcome_)) throw *error;
    return *std::get_if<Value>(&outcome_);
  }
  /// The same, handing the value over.
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
