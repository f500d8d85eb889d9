// The decompressor of the archive reader against zlib. Both yield the same bytes for every stream that zlib
// accepts. Streams that zlib refuses are read only if their first fault is one of the kinds that the library
// of the archive reader is known to accept.

#include <memory>
#include <vector>

#include <libdeflate.h>
#include <zlib.h>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/ZIPCodec.hpp"
#include "fuzz/Require.hpp"
#include "fuzz/StrictInflate.hpp"

namespace {

using zelvo::ByteView;

constexpr std::size_t maximumOutputBytes = 1 << 17;

struct Expanded {
  bool isAccepted = false;
  bool isTooLarge = false;
  std::size_t consumed = 0;
  std::vector<std::uint8_t> bytes = std::vector<std::uint8_t>(maximumOutputBytes);
};

Expanded byZlib(ByteView stream) {
  Expanded result;
  std::vector<std::uint8_t> input(stream.begin(), stream.end());
  z_stream state{};
  ZELVO_REQUIRE(inflateInit2(&state, -15) == Z_OK);
  state.next_in = input.data();
  state.avail_in = static_cast<uInt>(input.size());
  state.next_out = result.bytes.data();
  state.avail_out = static_cast<uInt>(result.bytes.size());
  const int status = inflate(&state, Z_FINISH);
  result.isAccepted = status == Z_STREAM_END;
  result.isTooLarge = status == Z_BUF_ERROR && state.avail_out == 0;
  result.consumed = state.total_in;
  result.bytes.resize(state.total_out);
  inflateEnd(&state);
  return result;
}

Expanded byReadersLibrary(ByteView stream) {
  Expanded result;
  const std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)> decompressor(
      libdeflate_alloc_decompressor(), &libdeflate_free_decompressor);
  std::size_t produced = 0;
  const libdeflate_result status =
      libdeflate_deflate_decompress_ex(decompressor.get(), stream.data(), stream.size(), result.bytes.data(),
                                       result.bytes.size(), &result.consumed, &produced);
  result.isAccepted = status == LIBDEFLATE_SUCCESS;
  result.isTooLarge = status == LIBDEFLATE_INSUFFICIENT_SPACE;
  result.bytes.resize(result.isAccepted ? produced : 0);
  return result;
}

bool isRead(ByteView stream, std::size_t size) {
  try {
    static_cast<void>(zelvo::BoundedZIP::inflateRaw(stream, size));
    return true;
  } catch (const zelvo::DocumentError&) {
    return false;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const ByteView stream(data, size);
  const Expanded reference = byZlib(stream);
  const Expanded ours = byReadersLibrary(stream);
  if (reference.isTooLarge || ours.isTooLarge) return 0;
  if (reference.isAccepted) {
    ZELVO_REQUIRE(ours.isAccepted && ours.bytes == reference.bytes && ours.consumed == reference.consumed);
  }
  if (!ours.isAccepted) return 0;
  const auto fault = zelvo::fuzzing::firstFault(stream);
  ZELVO_REQUIRE(fault != zelvo::fuzzing::StreamFault::malformed);
  ZELVO_REQUIRE((fault == zelvo::fuzzing::StreamFault::none) == reference.isAccepted);

  // The reader also requires the exact sizes.
  const std::size_t expanded = ours.bytes.size();
  const ByteView whole = stream.first(ours.consumed);
  ZELVO_REQUIRE(zelvo::textOf(zelvo::BoundedZIP::inflateRaw(whole, expanded).view()) ==
                zelvo::textOf(ours.bytes));
  ZELVO_REQUIRE(!isRead(whole, expanded + 1) && (expanded == 0 || !isRead(whole, expanded - 1)));
  if (size > whole.size()) ZELVO_REQUIRE(!isRead(stream.first(whole.size() + 1), expanded));
  return 0;
}
