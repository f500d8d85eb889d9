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
using Lines = std::vector<std::string>;

constexpr std::string_view workbookSuffix = ".xlsx";
constexpr std::ptrdiff_t context = 3;  // lines before and after the first difference

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
  Lines names;
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

/// A line for each tag, with the text behind it.
Lines linesOf(std::string_view xml) {
  Lines lines;
  for (std::size_t start = 0; start < xml.size(); start += lines.back().size())
    lines.emplace_back(xml.substr(start, xml.find('<', start + 1) - start));
  return lines;
}

std::string firstDifference(const Lines& wanted, const Lines& found) {
  const auto [missing, surplus] = std::ranges::mismatch(wanted, found);
  std::string text;
  const auto show = [&text](const char* mark, auto first, auto last) {
    for (; first != last; ++first)
      text += mark + *first + '\n';
  };
  show("    ", missing - std::min(context, missing - wanted.begin()), missing);
  show("  - ", missing, missing + std::min(context, wanted.end() - missing));
  show("  + ", surplus, surplus + std::min(context, found.end() - surplus));
  return text;
}

std::string differencesOf(ByteView package, const fs::path& folder) {
  std::string text;
  for (const Part& part : BoundedZIP::read(package)) {
    const fs::path path = folder / part.name;
    if (part.name.ends_with(workbookSuffix)) {
      text += differencesOf(part.bytes.view(), path);
    } else if (const std::string wanted = contentOf(path); part.bytes.text() != wanted) {
      text += path.string() + '\n' + firstDifference(linesOf(wanted), linesOf(part.bytes.text()));
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
