#pragma once

#include <exception>
#include <stop_token>

namespace zelvo {

/// Thrown when the caller's stop token requests cancellation. Not a `DocumentError`: the document is not the
/// cause.
class Cancelled : public std::exception {
 public:
  const char* what() const noexcept override { return "The operation was cancelled."; }
};

/// Throws `Cancelled` if stop was requested. Long loops call it once per entry, part or row. A
/// default-constructed token is never cancelled.
inline void throwIfCancelled(const std::stop_token& stop) {
  if (stop.stop_requested()) throw Cancelled();
}

}  // namespace zelvo
