#include <limits>

#include <gtest/gtest.h>

#include "DocumentRuntime/Coding/JsonReader.hpp"
#include "DocumentRuntime/Coding/JsonWriter.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"

namespace zelvo {
namespace {

TEST(JsonWriter, StructureAndValues) {
  JsonWriter writer;
  const auto key = [&](std::string_view name) -> JsonWriter& {
    writer.key(name);
    return writer;
  };
  writer.beginObject();
  key("empty").beginArray();
  writer.endArray();
  key("list").beginArray();
  writer.null();
  writer.boolean(true);
  writer.integer(std::numeric_limits<std::int64_t>::min());
  writer.number(2);
  writer.beginObject();
  writer.endObject();
  writer.beginObject();
  key("a \"key\"").bytes(bytesOf("\xFF\xEF\xBE!"));
  key("b").string("");
  writer.endObject();
  writer.endArray();
  key("last").boolean(false);
  writer.endObject();
  EXPECT_EQ(
      writer.take(),
      R"({"empty":[],"list":[null,true,-9223372036854775808,2,{},{"a \"key\"":"/+++IQ==","b":""}],"last":false})");
}

TEST(JsonWriter, OnlyWhatMustBeEscapedIs) {
  JsonWriter writer;
  writer.string("a/é\u2028\x7F\"\\\b\f\n\r\t\x01\x1F" + std::string(1, '\0') + "z");
  EXPECT_EQ(writer.take(),
            "\"a/é\u2028\x7F"
            R"(\"\\\b\f\n\r\t\u0001\u001f\u0000z")");
}

TEST(JsonWriter, EveryCharacterComesBack) {
  std::string text;
  for (int c = 0; c < 0x80; ++c)
    text += static_cast<char>(c);
  text += "éß€😀";
  JsonWriter writer;
  writer.string(text);
  const JsonDocument document(writer.take());
  EXPECT_EQ(document.root().string(), text);
}

TEST(JsonWriter, NumbersThatJsonCannotCarryAreRefused) {
  using Limits = std::numeric_limits<double>;
  for (const double value : {Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN()}) {
    JsonWriter writer;
    EXPECT_THROW(writer.number(value), DocumentError);
  }
}

}  // namespace
}  // namespace zelvo
