#pragma once

#include <exception>
#include <stop_token>

namespace zelvo {

/// The caller asked for the operation to stop. Never a `DocumentError`: nothing is wrong with the document.
class Cancelled : public std::exception {
 public:
  const char* what() const noexcept override { return "The operation was cancelled."; }
};

/// Long loops call this once per entry, part or row. A default-made token is never cancelled.
inline void throwIfCancelled(const std::stop_token& stop) {
  if (stop.stop_requested()) throw Cancelled();
}

}  // namespace zelvo
