// The XML reader against a second parser, on acceptance and content.

#include <cstdio>

#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "Support/ReferenceXML.hpp"
#include "fuzz/Require.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto difference = zelvo::testing::disagreement(zelvo::textOf({data, size}));
  if (difference) std::fprintf(stderr, "%s\n", difference->c_str());
  ZELVO_REQUIRE(!difference);
  return 0;
}
