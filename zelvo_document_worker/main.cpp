#include <exception>
#include <unistd.h>

#include "DocumentWorkerProtocol/WorkerExitStatus.hpp"
#include "System/Confinement.hpp"
#include "System/StandardStreams.hpp"
#include "zelvo_document_worker/WorkerEntry.hpp"

namespace zelvo {
namespace {

int confineAndRun() {
  try {
    const Confinement confinement = enterConfinement();
    StandardInput input;
    StandardOutput output;
    return runWorker(*confinement.entitlements, *confinement.limits, input, output);
  } catch (const std::exception&) {
    // Memory ran out before anything was read.
    return exitStatus::notConfined;
  }
}

}  // namespace
}  // namespace zelvo

int main() {
  // Ends at once: what would run at exit would run under confinement.
  _exit(zelvo::confineAndRun());
}
