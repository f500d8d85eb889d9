#pragma once

namespace zelvo {

/// Establishes what the tool relies on, whatever its parent passed on. Must be called first:
///
/// - The three standard streams are open, so that no file or pipe of the tool gets the number of one. Using a
///   stream that was closed fails.
/// - A write beyond the limit on file sizes fails and does not end the process.
/// - Children can be waited for.
/// - A signal that ends the tool ends its children and removes its temporary files (`SignalCleanup`).
void setUpProcess();

}  // namespace zelvo
