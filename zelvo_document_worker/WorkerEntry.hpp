#pragma once

#include <optional>
#include <string>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "System/EntitlementReader.hpp"
#include "System/ResourceLimits.hpp"
#include "System/StandardStreams.hpp"

namespace zelvo {

/// What a worker does: turns the text of its request into that of its response. None ends the process without
/// a response, and so does an exception.
using RequestHandler = std::optional<std::string> (*)(std::string request);

/// The life of a worker, from the sandbox check to the one response. Gives one of `exitStatus`; throws
/// nothing.
int runWorker(EntitlementReader& entitlements, Limits& limits, Input& input, Output& output,
              RequestHandler handle) noexcept;

/// The same for the running process and its standard streams, which it confines first.
int runWorkerProcess(RequestHandler handle) noexcept;

/// The sentence that a response reports for a refusal, cut to its bound.
std::string reportedError(const DocumentError& error);

}  // namespace zelvo
