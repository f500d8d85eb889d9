// The request decoder: every input is decoded or refused, and a decoded request round-trips through encoding
// and decoding.

#include <string>
#include <string_view>

#include "DocumentRuntime/Coding/DecodingError.hpp"
#include "DocumentRuntime/Coding/JsonCoding.hpp"
#include "DocumentWorkerProtocol/DocumentWorkerMessage.hpp"
#include "fuzz/MemoryBound.hpp"
#include "fuzz/Require.hpp"

namespace {

constexpr std::size_t maximumErrorBytes = 512;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using zelvo::DocumentWorkerRequest;
  try {
    const auto request = [&] {
      const auto limit = zelvo::fuzzing::messageMemory(size);
      return zelvo::fromJson<DocumentWorkerRequest>(std::string(zelvo::textOf({data, size})));
    }();
    ZELVO_REQUIRE(zelvo::fromJson<DocumentWorkerRequest>(zelvo::toJson(request)) == request);
  } catch (const zelvo::DecodingError& error) {
    const std::string_view text = error.what();
    ZELVO_REQUIRE(!text.empty() && text.size() < maximumErrorBytes);
  }
  return 0;
}
