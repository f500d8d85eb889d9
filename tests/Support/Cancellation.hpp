#pragma once

#include <memory>
#include <stop_token>

namespace zelvo::testing {

/// On the heap, because GCC 12 takes one on the stack for uninitialized.
inline std::unique_ptr<std::stop_source> stopSource() {
  return std::make_unique<std::stop_source>();
}

/// The token of an operation that was cancelled before it began.
inline std::stop_token stopped() {
  const auto source = stopSource();
  source->request_stop();
  return source->get_token();
}

}  // namespace zelvo::testing
