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
// Bytes of a difference, and those before its first.
constexpr std::size_t shown = 300;
constexpr std::ptrdiff_t before = 100;

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
  std::string text;
  for (const Part& part : BoundedZIP::read(package)) {
    const fs::path path = folder / part.name;
    if (part.name.ends_with(workbookSuffix)) {
      text += differencesOf(part.bytes.view(), path);
    } else if (const std::string wanted = contentOf(path), found(part.bytes.text()); found != wanted) {
      const auto same = std::ranges::mismatch(wanted, found).in1 - wanted.begin();
      const auto start = static_cast<std::size_t>(std::max(same, before) - before);
      text += path.string() + "\n  - " + wanted.substr(start, shown) + "\n  + " + found.substr(start, shown) +
              '\n';
    }
  }
  if (text.empty() && textOf(package) != archiveOf(folder))
    return "the archive differs from " + folder.string();
  return text;
}

}  // namespace

std::string differences(const ByteBuffer& package, const fs::path& folder) {
  if (std::getenv("ZELVO_UPDATE_GOLDENS") != nullptr) update(package.view(), folder);
  return differencesOf(package.view(), folder);
}

}  // namespace zelvo::testing
