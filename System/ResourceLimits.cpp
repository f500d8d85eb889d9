#include "System/ResourceLimits.hpp"

#include <sys/resource.h>

namespace zelvo {
namespace {

auto platformResource(Resource resource) {
  switch (resource) {
    case Resource::cpuSeconds:
      return RLIMIT_CPU;
    case Resource::fileBytes:
      return RLIMIT_FSIZE;
    case Resource::processes:
      break;
  }
  return RLIMIT_NPROC;
}

}  // namespace

bool applyToThisProcess(const ResourceLimit& limit) {
  const auto resource = platformResource(limit.resource);
  const rlimit wanted = {limit.soft, limit.hard};
  if (setrlimit(resource, &wanted) != 0) return false;
  // Initialized to other values, in case an inherited filter fakes reading too.
  rlimit found = {~wanted.rlim_cur, ~wanted.rlim_max};
  return getrlimit(resource, &found) == 0 && found.rlim_cur == wanted.rlim_cur &&
         found.rlim_max == wanted.rlim_max;
}

}  // namespace zelvo
