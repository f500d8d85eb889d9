#include "zelvo/WorkerPath.hpp"

#include <filesystem>
#include <system_error>

#if defined(__APPLE__)
#include <array>
#include <mach-o/dyld.h>
#endif

namespace zelvo {
namespace {

std::filesystem::path runningExecutable() {
  std::error_code ignored;
#if defined(__APPLE__)
  std::array<char, 4096> path = {};
  auto size = static_cast<std::uint32_t>(path.size());
  if (_NSGetExecutablePath(path.data(), &size) != 0) return {};
  return std::filesystem::canonical(path.data(), ignored);
#else
  return std::filesystem::read_symlink("/proc/self/exe", ignored);
#endif
}

}  // namespace

std::string workerBesideTool() {
  // Without the tool's path there is no folder, and a bare name would be looked for in the current one.
  const std::filesystem::path tool = runningExecutable();
  const std::filesystem::path folder = tool.empty() ? "/nonexistent" : tool.parent_path();
  return (folder / "zelvo_document_worker").string();
}

}  // namespace zelvo
