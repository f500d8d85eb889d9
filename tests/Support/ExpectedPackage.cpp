#include "Support/ExpectedPackage.hpp"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <vector>

#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "Support/ArchiveBuilder.hpp"
#include "Support/Texts.hpp"

namespace zelvo::testing {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view workbookSuffix = ".xlsx";
void update(ByteView package, const fs::path& folder) {
  fs::remove_all(folder);
  for (const Part& part : BoundedZIP::read(package)) {
    const fs::path path = folder / part.name;
    fs::create_directories(path.parent_path());
    if (part.name.ends_with(workbookSuffix)) {
      update(part.bytes.view(), path);
    } else {
      std::ofstream(path, std::ios::binary) << part.bytes.text();
    }
  }
}

std::string archiveOf(const fs::path& folder) {
  std::vector<std::string> names;
  for (fs::recursive_directory_iterator it(folder), end; it != end; ++it) {
    const std::string name = it->path().lexically_relative(folder).string();
    if (it->is_directory() && !name.ends_with(workbookSuffix)) continue;
    if (it->is_directory()) it.disable_recursion_pending();
    names.push_back(name);
  }
  std::ranges::sort(names);
  ArchiveBuilder archive;
  for (const std::string& name : names) {
    const fs::path path = folder / name;
    archive.stored(name, fs::is_directory(path) ? archiveOf(path) : contentOf(path))
        .both([](EntryHeader& header) { header.flags = 0x0800; });
  }
  return archive.bytes();
}

std::string differencesOf(ByteView package, const fs::path& folder) {
  for (const Part& part : BoundedZIP::read(package)) {
    const fs::path path = folder / part.name;
    const bool isArchive = part.name.ends_with(workbookSuffix);
    const std::string within = isArchive ? differencesOf(part.bytes.view(), path) : "";
    if (!within.empty()) return within;
    if (!isArchive && part.bytes.text() != contentOf(path))
      return path.string() + ": " + std::string(part.bytes.text());
  }
  return textOf(package) == archiveOf(folder) ? "" : "the archive differs from " + folder.string();
}

}  // namespace

std::string differences(const ByteBuffer& package, const fs::path& folder) {
  if (std::getenv("ZELVO_UPDATE_GOLDENS") != nullptr) update(package.view(), folder);
  return differencesOf(package.view(), folder);
}

}  // namespace zelvo::testing
