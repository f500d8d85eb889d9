#include "DocumentWorkerHost/MessageExchange.hpp"

#include <utility>

#include "System/ChildProcess.hpp"

namespace zelvo {

std::variant<std::string, WorkerFailure> exchange(const std::string& path, std::string_view request,
                                                  std::chrono::milliseconds timeout) {
  if (request.size() > DocumentWorkerWire::maximumMessageBytes)
    return WorkerFailure{WorkerFailure::Kind::requestTooLarge};
  ChildResult result =
      runChildProcess({.program = path, .arguments = {}}, request,
                      {.outputBytes = DocumentWorkerWire::maximumMessageBytes, .wallClock = timeout});
  if (auto failure = WorkerFailure::of(result, path)) return *std::move(failure);
  return std::move(result.output);
}

}  // namespace zelvo
