#include <numeric>

#include <gtest/gtest.h>

#include "DocumentRuntime/Coding/Base64.hpp"
#include "Support/Cases.hpp"

namespace zelvo {
namespace {

std::string encoded(ByteView bytes) {
  std::string text;
  Base64::append(text, bytes);
  return text;
}

TEST(Base64, KnownTexts) {
  for (const auto& [bytes, text] : testing::cases<2>(R"(
      => ; f => Zg== ; fo => Zm8= ; foo => Zm9v ; foob => Zm9vYg== ; fooba => Zm9vYmE= ; foobar => Zm9vYmFy)")) {
    EXPECT_EQ(encoded(bytesOf(bytes)), text);
    const auto decoded = Base64::decode(text);
    ASSERT_TRUE(decoded) << text;
    EXPECT_EQ(decoded->text(), bytes);
  }
  EXPECT_EQ(encoded(bytesOf("\xFF\xEF\xBE")), "/+++");
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
  // Padding missing or elsewhere, bits behind the last byte, white space, other alphabets.
  for (const std::string& text : testing::words(R"(
      Zg Zg= Zm8 Zm9vY Z = ==== Z=== Zg==Zg== Zg=v Zm8=Zm9v =Zm9 Zh== Zm9= Zm9v␊ Zm9v␍␊Zg== ␠Zm9 Zm␠9v===
      Zm9v␠␠␠␠ Zm9- Zm9_ Zm9. Zm9␀)"))
    EXPECT_FALSE(Base64::decode(text)) << text;
  for (const std::string text : {"Zm9\x80", "\xFFm9v"})
    EXPECT_FALSE(Base64::decode(text)) << text;
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
