// The request decoder: whatever comes in is a request or is refused, and a request that was decoded is
// encoded and decoded as itself.

#include <string>

#include "DocumentRuntime/Coding/DecodingError.hpp"
#include "DocumentRuntime/Coding/JsonCoding.hpp"
#include "DocumentWorkerProtocol/DocumentWorkerMessage.hpp"
#include "fuzz/Require.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using zelvo::DocumentWorkerRequest;
  try {
    const auto request = zelvo::fromJson<DocumentWorkerRequest>(std::string(zelvo::textOf({data, size})));
    ZELVO_REQUIRE(zelvo::fromJson<DocumentWorkerRequest>(zelvo::toJson(request)) == request);
  } catch (const zelvo::DecodingError& error) {
    ZELVO_REQUIRE(!error.message().empty());
  }
  return 0;
}
