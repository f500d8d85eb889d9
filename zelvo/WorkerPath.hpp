#pragma once

#include <string>

namespace zelvo {

/// The worker beside the running executable. When that cannot be told, a path that leads nowhere.
std::string workerBesideTool();

}  // namespace zelvo
