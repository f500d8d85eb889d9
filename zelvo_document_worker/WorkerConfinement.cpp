#include "zelvo_document_worker/WorkerConfinement.hpp"

#include "zelvo_document_worker/SandboxCheck.hpp"

namespace zelvo {
namespace {

/// The hardest workbook within the readers' limits takes a few seconds: who needs more is stuck.
constexpr ResourceLimit cpuLimit = {.resource = Resource::cpuSeconds, .soft = 45, .hard = 45};
constexpr ResourceLimit fileLimit = {.resource = Resource::fileBytes, .soft = 0, .hard = 0};
constexpr ResourceLimit processLimit = {.resource = Resource::processes, .soft = 0, .hard = 0};

}  // namespace

bool confineForWork(EntitlementReader& entitlements, Limits& limits) {
  return sandboxIsEnabled(entitlements) && limits.apply(cpuLimit) && limits.apply(fileLimit) &&
         limits.apply(processLimit) && limits.seal();
}

}  // namespace zelvo
