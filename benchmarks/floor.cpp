// The floor: what no worker can avoid that stands on these libraries. Reads a request, decodes its JSON and
// base64, digests the document, expands and sums every entry and runs the XML parser once over every part,
// with handlers that do nothing. Checks nothing, answers nothing.

#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include <boost/json/basic_parser_impl.hpp>
#include <expat.h>
#include <nettle/sha2.h>
#include <zlib.h>

namespace {

// NOLINTBEGIN(readability-identifier-naming): the parser calls its handler by these names.
struct DataHandler {
  static constexpr std::size_t max_array_size = SIZE_MAX;
  static constexpr std::size_t max_object_size = SIZE_MAX;
  static constexpr std::size_t max_string_size = SIZE_MAX;
  static constexpr std::size_t max_key_size = SIZE_MAX;
  using Error = boost::json::error_code;
  using View = boost::json::string_view;

  std::string data;

  bool on_document_begin(Error&) { return true; }
  bool on_document_end(Error&) { return true; }
  bool on_array_begin(Error&) { return true; }
  bool on_array_end(std::size_t, Error&) { return true; }
  bool on_object_begin(Error&) { return true; }
  bool on_object_end(std::size_t, Error&) { return true; }
  bool on_string_part(View, std::size_t, Error&) { return true; }
  bool on_string(View text, std::size_t, Error&) {
    if (text.size() > data.size()) data.assign(text.data(), text.size());
    return true;
  }
  bool on_key_part(View, std::size_t, Error&) { return true; }
  bool on_key(View, std::size_t, Error&) { return true; }
  bool on_number_part(View, Error&) { return true; }
  bool on_int64(std::int64_t, View, Error&) { return true; }
  bool on_uint64(std::uint64_t, View, Error&) { return true; }
  bool on_double(double, View, Error&) { return true; }
  bool on_bool(bool, Error&) { return true; }
  bool on_null(Error&) { return true; }
  bool on_comment_part(View, Error&) { return true; }
  bool on_comment(View, Error&) { return true; }
};
// NOLINTEND(readability-identifier-naming)

std::string readInput() {
  std::string input;
  std::size_t used = 0;
  for (;;) {
    if (input.size() - used < 65'536) input.resize(input.size() * 2 + 65'536);
    const ssize_t count = read(0, input.data() + used, 65'536);
    if (count <= 0) break;
    used += static_cast<std::size_t>(count);
  }
  input.resize(used);
  return input;
}

std::vector<std::uint8_t> decoded(std::string_view text) {
  static const auto table = [] {
    std::array<std::uint8_t, 256> values{};
    const std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (std::size_t i = 0; i < alphabet.size(); ++i) {
      values[static_cast<unsigned char>(alphabet[i])] = static_cast<std::uint8_t>(i);
    }
    return values;
  }();
  std::vector<std::uint8_t> out(text.size() / 4 * 3);
  std::uint8_t* to = out.data();
  for (std::size_t i = 0; i + 3 < text.size(); i += 4) {
    std::uint32_t word = 0;
    for (std::size_t j = 0; j < 4; ++j)
      word = word << 6 | table[static_cast<unsigned char>(text[i + j])];
    *to++ = static_cast<std::uint8_t>(word >> 16);
    *to++ = static_cast<std::uint8_t>(word >> 8);
    *to++ = static_cast<std::uint8_t>(word);
  }
  return out;
}

std::uint32_t little(const std::uint8_t* at, int bytes) {
  std::uint32_t value = 0;
  for (int i = bytes - 1; i >= 0; --i)
    value = value << 8 | at[i];
  return value;
}

void parse(const std::uint8_t* bytes, std::size_t size) {
  const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreate("UTF-8"),
                                                                            &XML_ParserFree);
  XML_SetElementHandler(
      parser.get(), [](void*, const char*, const char**) {}, [](void*, const char*) {});
  XML_SetCharacterDataHandler(parser.get(), [](void*, const char*, int) {});
  XML_Parse(parser.get(), reinterpret_cast<const char*>(bytes), static_cast<int>(size), 1);
}

/// Trusts the archive: the workloads are ours.
std::uint32_t walkArchive(std::vector<std::uint8_t>& archive) {
  std::uint32_t sum = 0;
  std::size_t end = archive.size() - 22;
  while (little(&archive[end], 4) != 0x06054b50)
    --end;
  const std::uint32_t entries = little(&archive[end + 10], 2);
  std::size_t cursor = little(&archive[end + 16], 4);
  for (std::uint32_t i = 0; i < entries; ++i) {
    const std::uint8_t* header = &archive[cursor];
    const std::uint32_t compressed = little(header + 20, 4);
    const std::uint32_t size = little(header + 24, 4);
    const std::size_t local = little(header + 42, 4);
    cursor += 46 + little(header + 28, 2) + little(header + 30, 2) + little(header + 32, 2);
    std::uint8_t* data =
        &archive[local + 30 + little(&archive[local + 26], 2) + little(&archive[local + 28], 2)];

    const auto expanded = std::make_unique_for_overwrite<std::uint8_t[]>(size + 1);
    z_stream stream{};
    inflateInit2(&stream, -15);
    stream.next_in = data;
    stream.avail_in = compressed;
    stream.next_out = expanded.get();
    stream.avail_out = size + 1;
    inflate(&stream, Z_FINISH);
    inflateEnd(&stream);
    sum ^= static_cast<std::uint32_t>(crc32(0, expanded.get(), size));
    parse(expanded.get(), size);
  }
  return sum;
}

}  // namespace

/// With an argument, stops after the digest: what a reader does that expands nothing.
int main(int argc, char** /*argv*/) {
  boost::json::basic_parser<DataHandler> parser(boost::json::parse_options{});
  {
    const std::string input = readInput();
    boost::json::error_code error;
    parser.write_some(false, input.data(), input.size(), error);
  }
  std::vector<std::uint8_t> archive = decoded(parser.handler().data);
  sha256_ctx context;
  sha256_init(&context);
  sha256_update(&context, archive.size(), archive.data());
  std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest{};
  sha256_digest(&context, digest.size(), digest.data());
  if (argc > 1) _exit(0);
  _exit(walkArchive(archive) == digest[0] ? 1 : 0);
}
