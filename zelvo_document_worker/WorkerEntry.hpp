#pragma once

#include <optional>
#include <string>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "System/EntitlementReader.hpp"
#include "System/ResourceLimits.hpp"
#include "System/StandardStreams.hpp"

namespace zelvo {

/// Returns the text of the response to the text of a request. If it returns nullopt or throws, the worker
/// ends without a response.
using RequestHandler = std::optional<std::string> (*)(std::string request);

/// Runs a worker: applies the sandbox policy, reads the request, and writes the one response. Returns one of
/// `exitStatus`.
int runWorker(EntitlementReader& entitlements, Limits& limits, Input& input, Output& output,
              RequestHandler handle) noexcept;

/// Confines the running process and runs a worker in it, on its standard streams.
int runWorkerProcess(RequestHandler handle) noexcept;

/// The error text of a response to a refused request, cut to `maximumErrorCharacters`.
std::string reportedError(const DocumentError& error);

}  // namespace zelvo
