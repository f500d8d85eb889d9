#include "fuzz/PackageMutator.hpp"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "Support/ArchiveBuilder.hpp"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maximumSize);

namespace zelvo::fuzzing {
namespace {

using testing::ArchiveBuilder;
using testing::EntryHeader;

/// The most bytes that one mutation adds to a text.
constexpr std::size_t growth = 256;

void mutate(std::string& text) {
  const std::size_t size = text.size();
  text.resize(size + growth);
  text.resize(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(text.data()), size, text.size()));
}

struct TextPart {
  std::string name;
  std::string text;
};

ArchiveBuilder archiveOf(const std::vector<TextPart>& parts, bool deflate) {
  ArchiveBuilder archive;
  for (const TextPart& part : parts) {
    if (deflate) {
      archive.deflated(part.name, part.text);
    } else {
      archive.stored(part.name, part.text);
    }
  }
  return archive;
}

/// The parts of an archive; empty if it is not an archive.
std::vector<TextPart> partsOf(ByteView archive) {
  std::vector<TextPart> parts;
  try {
    for (const Part& part : BoundedZIP::read(archive))
      parts.push_back({part.name, std::string(part.bytes.text())});
  } catch (const DocumentError&) {
    parts.clear();
  }
  return parts;
}

std::string mutatedArchive(std::vector<TextPart> parts, unsigned seed);

/// Mutates a part, and an archive within the archive by the same rules as the one around it.
void mutatePart(TextPart& part, unsigned seed) {
  auto inner = part.name.ends_with(".xlsx") ? partsOf(bytesOf(part.text)) : std::vector<TextPart>();
  if (inner.empty()) {
    mutate(part.text);
  } else {
    constexpr unsigned spread = 2'654'435'761;  // other bits choose inside
    part.text = mutatedArchive(std::move(inner), seed * spread);
  }
}

std::string mutatedArchive(std::vector<TextPart> parts, unsigned seed) {
  const std::size_t chosen = seed % parts.size();
  const bool deflate = (seed >> 8) % 2 == 0;
  switch ((seed >> 16) % 8) {
    case 0: {  // a stream that does not match the declared size and checksum
      ArchiveBuilder archive = archiveOf(parts, true);
      auto& entry = archive.entries[chosen];
      mutate(entry.data);
      entry.both([&](EntryHeader& header) {
        header.compressedSize = static_cast<std::uint32_t>(entry.data.size());
      });
      return archive.bytes();
    }
    case 1:
      mutate(parts[chosen].name);
      break;
    case 2:
      parts.erase(parts.begin() + static_cast<std::ptrdiff_t>(chosen));
      break;
    default:
      mutatePart(parts[chosen], seed);
  }
  return archiveOf(parts, deflate).bytes();
}

}  // namespace

std::size_t mutatePackage(std::uint8_t* data, std::size_t size, std::size_t maximumSize, unsigned seed) {
  if ((seed >> 24) % 8 == 0) return LLVMFuzzerMutate(data, size, maximumSize);
  std::vector<TextPart> parts = partsOf({data, size});
  if (parts.empty()) return LLVMFuzzerMutate(data, size, maximumSize);
  const std::string mutated = mutatedArchive(std::move(parts), seed);
  if (mutated.size() > maximumSize) return size;
  std::copy(mutated.begin(), mutated.end(), data);
  return mutated.size();
}

}  // namespace zelvo::fuzzing
