#include <numeric>

#include <gtest/gtest.h>

#include "DocumentRuntime/Coding/Base64.hpp"

namespace zelvo {
namespace {

std::string encoded(ByteView bytes) {
  std::string text;
  Base64::append(text, bytes);
  return text;
}

TEST(Base64, KnownTexts) {
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"", ""},
      {"f", "Zg=="},
      {"fo", "Zm8="},
      {"foo", "Zm9v"},
      {"foob", "Zm9vYg=="},
      {"fooba", "Zm9vYmE="},
      {"foobar", "Zm9vYmFy"},
      {"\xFF\xEF\xBE", "/+++"},
  };
  for (const auto& [bytes, text] : rows) {
    EXPECT_EQ(encoded(bytesOf(bytes)), text);
    const auto decoded = Base64::decode(text);
    ASSERT_TRUE(decoded) << text;
    EXPECT_EQ(decoded->text(), bytes);
  }
}

TEST(Base64, EveryByteInEveryPlaceComesBack) {
  ByteBuffer bytes(256 * 3 + 2);
  std::iota(bytes.data(), bytes.data() + bytes.size(), std::uint8_t{0});
  for (std::size_t size = bytes.size() - 6; size <= bytes.size(); ++size) {
    const ByteView view = bytes.view().first(size);
    const auto decoded = Base64::decode(encoded(view));
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->text(), textOf(view));
  }
}

TEST(Base64, Refusals) {
  for (const std::string text : {
           "Zg",     "Zg=",          "Zm8",      "Zm9vY",    "Z",        "=",  // padding missing or too short
           "====",   "Z===",         "Zg==Zg==", "Zg=v",     "Zm8=Zm9v", "=Zm9",  // padding elsewhere
           "Zh==",   "Zm9=",                                                      // bits behind the last byte
           "Zm9v\n", "Zm9v\r\nZg==", " Zm9",     "Zm 9v===", "Zm9v    ",          // white space
           "Zm9-",   "Zm9_",         "Zm9.",     "Zm9\x80",  "\xFFm9v",           // other alphabets
       }) {
    EXPECT_FALSE(Base64::decode(text)) << text;
  }
  EXPECT_FALSE(Base64::decode({"Zm9\0", 4}));
}

TEST(Base64, OneBadCharacterIsFoundAnywhere) {
  const std::string good = encoded(bytesOf(std::string(64, 'x')));
  for (std::size_t i = 0; i < good.size() - 2; ++i) {
    std::string bad = good;
    bad[i] = '=';
    EXPECT_FALSE(Base64::decode(bad)) << i;
  }
}

}  // namespace
}  // namespace zelvo
