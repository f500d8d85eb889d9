// The XML reader against a second parser, on acceptance and content.

#include <cstdio>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/BoundedXML.hpp"
#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "Support/ReferenceXML.hpp"
#include "fuzz/MemoryBound.hpp"
#include "fuzz/Require.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const auto limit = zelvo::fuzzing::partMemory(size);
    static_cast<void>(zelvo::OOXML::xml(zelvo::ByteBuffer::copyOf({data, size})));
  } catch (const zelvo::DocumentError&) {
    // Compared below.
  }
  const auto difference = zelvo::testing::disagreement(zelvo::textOf({data, size}));
  if (difference) static_cast<void>(std::fprintf(stderr, "%s\n", difference->c_str()));
  ZELVO_REQUIRE(!difference);
  return 0;
}
