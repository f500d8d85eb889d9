// Owns Coding/JsonReader and Coding/JsonValue: what JSON is accepted, how it is read, which place an error
// names.
#include <gtest/gtest.h>

#include "DocumentRuntime/Coding/JsonReader.hpp"
#include "Support/Cases.hpp"
#include "Support/Texts.hpp"

namespace zelvo {
namespace {

/// The value as a canonical text: strings as they are between bars, arrays with their size.
std::string dump(JsonValue value) {
  if (value.isNull()) return "null";
  if (value.kind() == JsonKind::boolean) return value.boolean() ? "true" : "false";
  if (value.kind() == JsonKind::number) return std::to_string(value.number());
  if (value.kind() == JsonKind::string) return "|" + std::string(value.string()) + "|";
  std::string text;
  if (value.kind() == JsonKind::object) {
    for (const JsonMember member : value.object())
      text += " " + std::string(member.key) + "=" + dump(member.value);
    return "{" + text + "}";
  }
  for (const JsonValue element : value.array())
    text += " " + dump(element);
  return "[" + std::to_string(value.array().size()) + ":" + text + "]";
}

/// What a text says, or its error.
std::string read(std::string text) {
  try {
    const JsonDocument document(std::move(text));
    return dump(document.root());
  } catch (const DecodingError& error) {
    return error.what();
  }
}

bool isMalformed(const std::string& text) {
  return read(text).starts_with("The JSON is malformed at byte ");
}

TEST(JsonReader, Values) {
  for (const auto& [text, expected] : testing::cases<2>(R"_(
      null => null ; [] => [0:] ; [true,false,[[]],{}] => [4: true false [1: [0:]] {}]
      [1,-2.5e1␠,␉0] => [3: 1.000000 -25.000000 0.000000] ; {"a":1,"":2,"a":3} => { a=1.000000 =2.000000 a=3.000000}
      {"a":{"b":[1,{"c":"d"}]},"e":""} => { a={ b=[2: 1.000000 { c=|d|}]} e=||}
      "\"\\\/\b\f\n\r\t" => |"\/␈␌␊␍␉| ; "\u0041\u00e9\u20AC\uD83D\uDE00" => |Aé€😀|
      ["é\n€","plain","x\u0000y","z"] => [4: |é␊€| |plain| |x␀y| |z|]
      {"k\u0065y":"v\u0061l","after":"un\/touched"} => { key=|val| after=|un/touched|}
      [12,"\u00334",56,"\n",[7,{"\u0038":9,"":"\t"}]] => [5: 12.000000 |34| 56.000000 |␊| [2: 7.000000 { 8=9.000000 =|␉|}]]
      12␠ => 12.000000 ; 12 => 12.000000)_"))
    EXPECT_EQ(read(text), expected) << text;
}

TEST(JsonReader, TextsStayApartWhenEscapesShrinkThem) {
  // Longer than the parser's buffer, so that strings come in pieces, decoded ones and plain ones by turns.
  std::string json = "[";
  std::string expected = "[60:";
  for (std::size_t i = 0; i < 60; ++i) {
    const std::string plain(i * 97, static_cast<char>('a' + i % 26));
    const bool escapes = i % 3 == 0;
    json += (i > 0 ? ",\"" : "\"") + testing::repeated(plain + (escapes ? R"(\u00e9\n\/)" : ""), 2) + "\"";
    expected += " |" + testing::repeated(plain + (escapes ? "é\n/" : ""), 2) + "|";
  }
  EXPECT_EQ(read(json + "]"), expected + "]");
}

TEST(JsonReader, Malformed) {
  // Structure, numbers, strings, lone surrogates; then bytes that are not UTF-8.
  for (const std::string& text : testing::words(
           R"_(
      nul tru [ ] { [1 [1, [1,] {"a"} {"a":} {"a":1,} {a:1} 'a' [1␠2] 1␠2 {}␠{} []x //␠c␊1 [1/**/] 1␀
      01 +1 - 1. .5 1e 1e+ 0x1 NaN Infinity -Infinity 1e99999999999
      " "a "\" "\x" "\u12" "\u12G4" "a␊b" "␉" "\uD800" "\uD800x" "\uD800\n" "\uD800\u0041" "\uDC00")_"
           " \"\x80\" \"\xC3\" \"\xC0\xAF\" \"\xED\xA0\x80\" \"\xF4\x90\x80\x80\" \"\xE2\x82\" {\"\xFF\":1}"
           " \"\\n\xC3\" \"\\n\xFF\" \xEF\xBB\xBF{} \xFE\xFF"))
    EXPECT_TRUE(isMalformed(text)) << text << " gives " << read(text);
  EXPECT_TRUE(isMalformed("") && isMalformed(" "));
  EXPECT_EQ(read(R"({"a": 1 2})"), "The JSON is malformed at byte 8: syntax error.");
  EXPECT_EQ(read("[1]x"), "The JSON is malformed at byte 3: extra data.");

  const std::string text = R"({"a":[1.5e3,"x\u00e9\ud83d\ude00\\é€"],"b":{"c":null,"d":true}})";
  for (std::size_t size = 0; size <= text.size(); ++size)
    EXPECT_EQ(isMalformed(text.substr(0, size)), size < text.size()) << size;
}

TEST(JsonReader, DepthIsBounded) {
  using testing::repeated;
  const std::string objects = repeated(R"({"a":)", 511) + "1" + repeated("}", 511);
  for (const std::string& deepest : {repeated("[", 511) + repeated("]", 511), objects}) {
    EXPECT_FALSE(isMalformed("[" + deepest + "]"));
    EXPECT_TRUE(isMalformed("[[" + deepest + "]]"));
  }
  EXPECT_TRUE(isMalformed(std::string(1'000'000, '[')));
}

TEST(JsonReader, ErrorsCutThePathToThePlace) {
  const auto errorIn = [](const std::string& json) -> std::string {
    try {
      const JsonDocument document(json);
      JsonValue value = document.root();
      while (value.kind() == JsonKind::object)
        value = (*value.object().begin()).value;
      return std::string(value.string());
    } catch (const DecodingError& error) {
      return error.what();
    }
  };
  const std::string message = ": Expected a string, found null.";
  // Whole characters of 300 bytes, whether one key is too long or all of them together.
  EXPECT_EQ(errorIn(R"({"a":{")" + testing::repeated("é", 500'000) + R"(":null}})"),
            "a." + testing::repeated("é", 149) + "\u2026" + message);
  EXPECT_EQ(errorIn(testing::repeated(R"({"a":)", 500) + "null" + std::string(500, '}')),
            testing::repeated("a.", 150) + "\u2026" + message);
}

}  // namespace
}  // namespace zelvo
