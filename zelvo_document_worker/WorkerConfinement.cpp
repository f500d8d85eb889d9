#include "zelvo_document_worker/WorkerConfinement.hpp"

#include <cstddef>
#include <exception>

#include "System/Confinement.hpp"
#include "System/ForkedChild.hpp"
#include "System/StandardStreams.hpp"
#include "zelvo_document_worker/SandboxCheck.hpp"

namespace zelvo {
namespace {

/// The hardest workbook within the readers' limits takes a few seconds: who needs more is stuck.
constexpr ResourceLimit cpuLimit = {.resource = Resource::cpuSeconds, .soft = 45, .hard = 45};
constexpr ResourceLimit fileLimit = {.resource = Resource::fileBytes, .soft = 0, .hard = 0};
constexpr ResourceLimit processLimit = {.resource = Resource::processes, .soft = 0, .hard = 0};

/// Bytes of the longest explanation, and many more.
constexpr std::size_t maximumExplanationBytes = 4096;

/// Writes what stood in the way, if anything, to standard output. Returns the status to end with.
int confineAndReport() noexcept {
  try {
    warmUpUnwinder();
    return StandardOutput().write(enterConfinement().failure) ? 0 : 1;
  } catch (const std::exception&) {
    return 1;
  }
}

}  // namespace

bool confineForWork(EntitlementReader& entitlements, Limits& limits) {
  return sandboxIsEnabled(entitlements) && limits.apply(cpuLimit) && limits.apply(fileLimit) &&
         limits.apply(processLimit) && limits.seal();
}

std::string explainConfinementFailure() {
  const ChildResult result = runForkedChild(confineAndReport, maximumExplanationBytes);
  const bool isKnown = result.outcome == ChildOutcome::exited && result.code == 0 && !result.output.empty();
  return isKnown ? "The reason: " + result.output + "." : "";
}

}  // namespace zelvo
