#include "Support/ExpectedPackage.hpp"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <vector>

#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "Support/ArchiveBuilder.hpp"

namespace zelvo::testing {
namespace {

constexpr std::string_view workbookSuffix = ".xlsx";

std::string contentOf(const std::filesystem::path& path);

std::string archiveOf(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  for (auto it = std::filesystem::recursive_directory_iterator(folder);
       it != std::filesystem::recursive_directory_iterator(); ++it) {
    const std::string name = it->path().lexically_relative(folder).string();
    if (it->is_directory() && !name.ends_with(workbookSuffix)) continue;
    if (it->is_directory()) it.disable_recursion_pending();
    names.push_back(name);
  }
  std::ranges::sort(names);
  ArchiveBuilder archive;
  for (const std::string& name : names) {
    archive.stored(name, contentOf(folder / name)).both([](EntryHeader& header) { header.flags = 0x0800; });
  }
  return archive.bytes();
}

std::string contentOf(const std::filesystem::path& path) {
  if (std::filesystem::is_directory(path)) return archiveOf(path);
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

std::string differences(const ByteBuffer& bytes, const std::filesystem::path& folder) {
  std::string found;
  for (const Part& part : BoundedZIP::read(bytes.view())) {
    if (part.name.ends_with(workbookSuffix)) continue;
    const std::string wanted = contentOf(folder / part.name);
    if (part.bytes.text() != wanted)
      found.append(part.name)
          .append(" is\n")
          .append(part.bytes.text())
          .append("\nand not\n")
          .append(wanted) += "\n";
  }
  if (found.empty() && bytes.text() != archiveOf(folder))
    return "the archive differs from " + folder.string();
  return found;
}

}  // namespace zelvo::testing
