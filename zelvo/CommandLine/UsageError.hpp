#pragma once

#include <string>

#include "zelvo/Output/Result.hpp"

namespace CLI {
class App;
}

namespace zelvo {

/// The error for a command line that `tool` could not parse. A wrong command replaces the message. Hints name
/// the command or option that is nearest to a wrong one.
CommandError usageError(const CLI::App& tool, std::string message);

}  // namespace zelvo
