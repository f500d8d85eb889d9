#include <functional>

#include <gtest/gtest.h>

#include "DocumentRuntime/Coding/JsonReader.hpp"
#include "Support/Texts.hpp"

namespace zelvo {
namespace {

/// The value as a canonical text: strings as they are between bars, numbers as doubles.
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

std::string dumpOf(std::string text) {
  const JsonDocument document(std::move(text));
  return dump(document.root());
}

std::string errorOf(const std::function<void()>& act) {
  try {
    act();
  } catch (const DecodingError& error) {
    return error.what();
  }
  return "no error";
}

TEST(JsonReader, Values) {
  const std::vector<std::pair<std::string, std::string>> rows = {
      {R"( null )", "null"},
      {R"([])", "[0:]"},
      {R"([true,false,[[]],{}])", "[4: true false [1: [0:]] {}]"},
      {R"([1,-2.5e1 , 0])", "[3: 1.000000 -25.000000 0.000000]"},
      {R"({"a":{"b":[1,{"c":"d"}]},"e":""})", "{ a={ b=[2: 1.000000 { c=|d|}]} e=||}"},
      {R"({"a":1,"":2,"a":3})", "{ a=1.000000 =2.000000 a=3.000000}"},
      {R"("\"\\\/\b\f\n\r\t")", "|\"\\/\b\f\n\r\t|"},
      {R"("\u0041\u00e9\u20AC\uD83D\uDE00")", "|Aé€😀|"},
      {R"(["é\n€","plain","x\u0000y", "z"])", "[4: |é\n€| |plain| |x" + std::string(1, '\0') + "y| |z|]"},
      {R"({"k\u0065y":"v\u0061l","after":"un\/touched"})", "{ key=|val| after=|un/touched|}"},
      {"\"\x7F\"", "|\x7F|"},
      // A decoded text follows a number, in its place.
      {R"([12,"\u00334",56,"\n",[7,{"\u0038":9,"":"\t"}]])",
       "[5: 12.000000 |34| 56.000000 |\n| [2: 7.000000 { 8=9.000000 =|\t|}]]"},
      {"12 ", "12.000000"},
      {"12", "12.000000"},
  };
  for (const auto& [text, expected] : rows)
    EXPECT_EQ(dumpOf(text), expected) << text;
}

TEST(JsonReader, TextsStayApartWhenEscapesShrinkThem) {
  // Longer than the parser's buffer, so that strings come in pieces, decoded ones and plain ones by turns.
  std::string json;
  std::string expected = "[60:";
  for (std::size_t i = 0; i < 60; ++i) {
    const std::string plain(i * 97, static_cast<char>('a' + i % 26));
    const std::string escaped = plain + (i % 3 == 0 ? R"(\u00e9\n\/)" : "");
    const std::string decoded = plain + (i % 3 == 0 ? "é\n/" : "");
    json.append(i > 0 ? ",\"" : "\"").append(escaped).append(escaped).append("\"");
    expected.append(" |").append(decoded).append(decoded).append("|");
  }
  EXPECT_EQ(dumpOf("[" + json + "]"), expected + "]");
}

TEST(JsonReader, Malformed) {
  // clang-format off
  const std::vector<std::string> texts = {
      // structure
      "", " ", "nul", "tru", "[", "]", "{", "[1", "[1,", "[1,]", R"({"a"})", R"({"a":})", R"({"a":1,})", "{a:1}", "'a'",
      "[1 2]", "1 2", "{} {}", "[]x", "// c\n1", "[1/**/]",
      // numbers
      "01", "+1", "-", "1.", ".5", "1e", "1e+", "0x1", "NaN", "Infinity", "-Infinity", "1e99999999999",
      // strings
      R"(")", R"("a)", R"("\")", R"("\x")", R"("\u12")", R"("\u12G4")", "\"a\nb\"", "\"\t\"",
      // lone surrogates
      R"("\uD800")", R"("\uD800x")", R"("\uD800\n")", R"("\uD800\u0041")", R"("\uDC00")",
      // UTF-8
      "\"\x80\"", "\"\xC3\"", "\"\xC0\xAF\"", "\"\xED\xA0\x80\"", "\"\xF4\x90\x80\x80\"", "\"\xE2\x82\"",
      "{\"\xFF\":1}", "\"\\n\xC3\"", "\"\\n\xFF\"", "\xEF\xBB\xBF{}", "\xFE\xFF",
  };
  // clang-format on
  for (const std::string& text : texts) {
    const std::string error = errorOf([&] { dumpOf(text); });
    EXPECT_TRUE(error.starts_with("The JSON is malformed at byte ")) << text << " gives " << error;
  }
  EXPECT_EQ(errorOf([] { dumpOf(std::string("[1]\0", 4)); }), "The JSON is malformed at byte 3: extra data.");
  EXPECT_EQ(errorOf([] { dumpOf(R"({"a": 1 2})"); }), "The JSON is malformed at byte 8: syntax error.");
}

TEST(JsonReader, EveryTruncationIsRefused) {
  const std::string text = R"({"a":[1.5e3,"x\u00e9\ud83d\ude00\\é€"],"b":{"c":null,"d":true}})";
  EXPECT_EQ(errorOf([&] { dumpOf(text); }), "no error");
  for (std::size_t size = 0; size < text.size(); ++size) {
    EXPECT_NE(errorOf([&] { dumpOf(text.substr(0, size)); }), "no error") << size;
  }
}

TEST(JsonReader, DepthIsBounded) {
  const auto nested = [](std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
  EXPECT_EQ(errorOf([&] { const JsonDocument document(nested(512)); }), "no error");
  EXPECT_NE(errorOf([&] { const JsonDocument document(nested(513)); }), "no error");
  EXPECT_NE(errorOf([&] { const JsonDocument document(std::string(1'000'000, '[')); }), "no error");
  const std::string objects = testing::repeated(R"({"a":)", 512) + "1" + std::string(512, '}');
  EXPECT_EQ(errorOf([&] { const JsonDocument document(objects); }), "no error");
  EXPECT_NE(errorOf([&] { const JsonDocument document("[" + objects + "]"); }), "no error");
}

TEST(JsonReader, MembersAreFoundByKey) {
  const JsonDocument document(R"({"a":{"b":1},"c":null,"b":2,"a":[],"b":null,"s":"t","d":1.5,"y":true})");
  const JsonObject object = document.root().object();
  EXPECT_EQ(object.required("a").kind(), JsonKind::array) << "the last of two";
  EXPECT_TRUE(object.required("c").isNull());
  EXPECT_FALSE(object.optional("c"));
  EXPECT_FALSE(object.optional("b")) << "the last is null";
  EXPECT_FALSE(object.optional("A"));
  EXPECT_EQ(object.string("s"), "t");
  EXPECT_TRUE(object.boolean("y"));
}

TEST(JsonReader, ErrorsNameThePlace) {
  const JsonDocument document(
      R"({"a":[{"b":1},{"b":[true,1e400,"!"]}],"a":[{"b":2},{"b":[true,1e400,"!",0.5,18446744073709551615,{}]}]})");
  const JsonObject root = document.root().object();
  const auto element = [](const JsonValue& list, std::size_t index) {
    std::vector<JsonValue> elements;
    for (const JsonValue value : list.array())
      elements.push_back(value);
    return elements.at(index);
  };
  const auto last = [&](std::size_t i) { return element(root.required("a"), i).object(); };
  const auto value = [&](std::size_t i) { return element(last(1).required("b"), i); };

  const std::pair<std::function<void()>, std::string> rows[] = {
      {[&] { root.required("x"); }, "The key \"x\" is missing."},
      {[&] { document.root().array(); }, "Expected an array, found an object."},
      {[&] { last(0).string("b"); }, "a[0].b: Expected a string, found a number."},
      {[&] { last(1).string("c"); }, "a[1]: The key \"c\" is missing."},
      {[&] { value(0).integer(); }, "a[1].b[0]: Expected a number, found a boolean."},
      {[&] { value(1).number(); }, "a[1].b[1]: The number is out of range."},
      {[&] { value(2).bytes(); }, "a[1].b[2]: Expected base64."},
      {[&] { value(2).boolean(); }, "a[1].b[2]: Expected a boolean, found a string."},
      {[&] { value(3).integer(); }, "a[1].b[3]: Expected an integer of at most 64 bits."},
      {[&] { value(4).integer(); }, "a[1].b[4]: Expected an integer of at most 64 bits."},
      {[&] { value(5).object().fail("Wrong."); }, "a[1].b[5]: Wrong."},
  };
  for (const auto& [act, expected] : rows)
    EXPECT_EQ(errorOf(act), expected);
}

TEST(JsonReader, ErrorsCutThePathToThePlace) {
  const auto errorIn = [](const std::string& json) {
    return errorOf([&] {
      const JsonDocument document(json);
      JsonValue value = document.root();
      while (value.kind() == JsonKind::object)
        value = (*value.object().begin()).value;
      value.string();
    });
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
