#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "Support/TemporaryFolder.hpp"

namespace zelvo::testing {

/// Puts a worker that breaks as it is told ("exit N", "signal N", "hang", "flood", "say TEXT") in the place
/// of a real one, and returns its path. It never reads its input. The test program is built with FAKE_WORKER.
inline std::string placeFakeWorker(const TemporaryFolder& folder, std::string_view act) {
  std::string path = folder.path("zelvo_document_worker");
  std::filesystem::remove(path);
  std::filesystem::create_symlink(FAKE_WORKER, path);
  folder.write("zelvo_document_worker.act", act);
  return path;
}

}  // namespace zelvo::testing
