#pragma once

namespace zelvo {

/// What the tool tells whoever started it; the worst of several files counts.
enum class ExitStatus : int {
  success = 0,
  refused = 1,       ///< a document was refused, or a file could not be read or written
  usage = 2,         ///< the command line makes no sense
  workerFailed = 3,  ///< the worker could not be run, or broke
};

}  // namespace zelvo
