// Owns Coding/Base64: the strict form, in both directions.
#include <gtest/gtest.h>

#include "DocumentRuntime/Coding/Base64.hpp"
#include "Support/Cases.hpp"

namespace zelvo {
namespace {

const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::string encoded(ByteView bytes) {
  std::string text;
  Base64::append(text, bytes);
  return text;
}

TEST(Base64, KnownTexts) {
  for (const auto& [bytes, text] :
       testing::cases<2>(R"(
      => ; f => Zg== ; fo => Zm8= ; foo => Zm9v ; foobar => Zm9vYmFy)"
                         "\n \x10\x83\x10Q\x87\x20\x92\x8B => EIMQUYcgkos= ; \xFF\xEF\xBE => /+++")) {
    EXPECT_EQ(encoded(bytesOf(bytes)), text);
    EXPECT_EQ(Base64::decode(text).value().text(), bytes);
  }
  EXPECT_EQ(encoded(Base64::decode(alphabet).value().view()), alphabet);
}

TEST(Base64, OneCharacterDecidesAnywhere) {
  for (std::size_t place = 0; place < alphabet.size(); ++place) {
    for (int byte = 0; byte < 256; ++byte) {
      std::string text = alphabet;
      text[place] = static_cast<char>(byte);
      const auto decoded = Base64::decode(text);
      const bool isInAlphabet = alphabet.find(text[place]) != std::string::npos;
      ASSERT_EQ(decoded ? encoded(decoded->view()) : "refused", isInAlphabet ? text : "refused");
    }
  }
}

TEST(Base64, Refusals) {
  // Padding missing or elsewhere, bits behind the last byte, white space, other alphabets.
  for (const std::string& text : testing::words(R"(
      Zg Zg= Zm8 Zm9vY Z = ==== Z=== Zg==Zg== Zg=v Zm8=Zm9v =Zm9 Zh== Zm9= Zm9v␊ Zm9v␍␊Zg== ␠Zm9 Zm␠9v===
      Z-== Zg\x80=)"))
    EXPECT_FALSE(Base64::decode(text)) << text;
}

}  // namespace
}  // namespace zelvo
