// Owns Coding/JsonWriter: compact JSON that escapes only what must be.
#include <limits>

#include <gtest/gtest.h>

#include "DocumentRuntime/Coding/JsonReader.hpp"
#include "DocumentRuntime/Coding/JsonWriter.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"

namespace zelvo {
namespace {

TEST(JsonWriter, StructureAndValues) {
  JsonWriter writer;
  writer.beginObject();
  writer.key("empty");
  writer.beginArray();
  writer.endArray();
  writer.key("a \"key\"");
  writer.beginArray();
  writer.null();
  writer.boolean(true);
  writer.integer(std::numeric_limits<std::int64_t>::min());
  writer.number(2);
  writer.beginObject();
  writer.endObject();
  writer.bytes(bytesOf("\xFF\xEF\xBE!"));
  writer.endArray();
  writer.key("last");
  writer.boolean(false);
  writer.endObject();
  EXPECT_EQ(writer.take(),
            R"({"empty":[],"a \"key\"":[null,true,-9223372036854775808,2,{},"/+++IQ=="],"last":false})");
}

TEST(JsonWriter, EveryCharacterComesBack) {
  std::string text = "é\u2028😀";
  for (char c = 0; c >= 0; ++c)
    text += c;
  JsonWriter writer;
  writer.string(text);
  const std::string json = writer.take();
  EXPECT_TRUE(json.starts_with("\"é\u2028😀\\u0000\\u0001")) << json;
  EXPECT_EQ(json.size(), 2 + text.size() + 7 + 27 * 5) << "two-character escapes, then six-character ones";
  const JsonDocument document(json);
  EXPECT_EQ(document.root().string(), text);
}

TEST(JsonWriter, NumbersThatJsonCannotCarryAreRefused) {
  using Limits = std::numeric_limits<double>;
  for (const double value : {Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN()})
    EXPECT_THROW(JsonWriter().number(value), DocumentError);
}

}  // namespace
}  // namespace zelvo
