#pragma once

namespace zelvo {

/// Gives this process what the tool relies on, whatever its parent left it. Called before all else:
///
/// - The three standard streams are open, so that no file or pipe of the tool's takes the number of one. A
///   stream that was closed fails when it is used.
/// - A write beyond the limit on file sizes fails, and does not end the process.
/// - Children can be waited for.
/// - A signal that ends the tool ends its children and removes its temporary files (`SignalCleanup`).
void setUpProcess();

}  // namespace zelvo
