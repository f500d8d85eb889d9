// replay TARGET PATH...: runs a fuzz target over files, and over the files of folders, without a fuzzer. A
// folder that does not exist is empty. Aborts if the target finds something, and ends with status 1 if an
// input takes too long.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

// The build renames each target's entry point to these.
#define ZELVO_TARGETS(APPLY) \
  APPLY(fuzz_clean)          \
  APPLY(fuzz_create)         \
  APPLY(fuzz_dataset)        \
  APPLY(fuzz_extract)        \
  APPLY(fuzz_inflate)        \
  APPLY(fuzz_package)        \
  APPLY(fuzz_presentation)   \
  APPLY(fuzz_report)         \
  APPLY(fuzz_request)        \
  APPLY(fuzz_scope)          \
  APPLY(fuzz_validate)       \
  APPLY(fuzz_xml)

#define ZELVO_DECLARE(NAME) extern "C" int NAME(const std::uint8_t* data, std::size_t size);
ZELVO_TARGETS(ZELVO_DECLARE)  // NOLINT(readability-identifier-naming): their files' names

namespace {

using Target = int (*)(const std::uint8_t*, std::size_t);

/// More than ten times the time of any input of some tens of kilobytes under a sanitizer.
constexpr double maximumSeconds = 5;

Target targetOf(std::string_view name) {
#define ZELVO_RETURN(NAME) \
  if (name == #NAME) return NAME;
  ZELVO_TARGETS(ZELVO_RETURN)
  return nullptr;
}

std::vector<std::filesystem::path> filesOf(const std::filesystem::path& path) {
  if (std::filesystem::is_regular_file(path)) return {path};
  if (!std::filesystem::exists(path)) return {};
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(path))
    files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

bool isQuick(Target target, const std::filesystem::path& path) {
  // Before the run, which may abort.
  static_cast<void>(std::fprintf(stderr, "%s\n", path.c_str()));
  std::ifstream file(path, std::ios::binary);
  const std::string content{std::istreambuf_iterator<char>(file), {}};
  const std::clock_t start = std::clock();
  target(reinterpret_cast<const std::uint8_t*>(content.data()), content.size());
  const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
  if (seconds > maximumSeconds)
    static_cast<void>(std::fprintf(stderr, "took %.1f seconds of processor time\n", seconds));
  return seconds <= maximumSeconds;
}

}  // namespace

int main(int argc, char** argv) {
  const Target target = argc > 2 ? targetOf(argv[1]) : nullptr;
  if (target == nullptr) {
    static_cast<void>(std::fputs("usage: replay TARGET PATH...\n", stderr));
    return 2;
  }
  bool areQuick = true;
  for (int i = 2; i < argc; ++i) {
    for (const auto& path : filesOf(argv[i]))
      areQuick = isQuick(target, path) && areQuick;
  }
  return areQuick ? 0 : 1;
}
