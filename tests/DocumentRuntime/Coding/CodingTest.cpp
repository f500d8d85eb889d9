// Owns DocumentRuntime/Coding: JSON texts in both directions, numbers, base64 and the JSON forms of all
// records.
#include <cmath>

#include <gtest/gtest.h>

#include "DocumentRuntime/Coding/Base64.hpp"
#include "DocumentRuntime/Coding/CleaningCoding.hpp"
#include "DocumentRuntime/Coding/JsonNumber.hpp"
#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Records/CleaningReport.hpp"
#include "Support/Cases.hpp"
#include "Support/Texts.hpp"

namespace zelvo {
namespace {

using namespace testing;

std::string encoded(ByteView bytes) {
  std::string text;
  Base64::append(text, bytes);
  return text;
}

TEST(Base64, EncodesAndDecodesStrictly) {
  for (const auto& [bytes, text] :
       cases<2>("f => Zg== ; fo => Zm8= ; foobar => Zm9vYmFy ; \xFF\xEF\xBE => /+++ ; =>")) {
    EXPECT_EQ(encoded(bytesOf(bytes)), text);
    EXPECT_EQ(Base64::decode(text).value().text(), bytes);
  }
  // Padding missing or elsewhere, bits behind the last byte, white space, other alphabets.
  for (const std::string& text : words(R"(
      Zg Zg= Zm8 Zm9vY Z = ==== Z=== Zg==Zg== Zg=v Zm8=Zm9v =Zm9 Zh== Zm9= Zm9v␊ Zm9v␍␊Zg== ␠Zm9 Zm␠9v===
      Z-== Zg\x80=)"))
    EXPECT_FALSE(Base64::decode(text)) << text;

  const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
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

TEST(JsonNumber, IntegersAreExactHoweverTheyAreWritten) {
  for (const auto& [text, value] : cases<2>(R"(
      0 => 0 ; -0 => 0 ; -0.0e5 => 0 ; 0e2000000000 => 0 ; 1.0 => 1 ; 1e0 => 1 ; 1E+2 => 100 ; 10e-1 => 1
      9223372036854775807 => 9223372036854775807 ; -9223372036854775808 => -9223372036854775808
      -1200.500e1 => -12005 ; -922337203685477580800e-2 => -9223372036854775808)"))
    EXPECT_EQ(JsonNumber::integer(text), std::stoll(value)) << text;
  for (const std::string& text : words(R"(
      9223372036854775808 -9223372036854775809 9223372036854775808.0 1e19 1e2000000000 1e-2000000000 0.5 10.01
      123e-1 9223372036854775806.5)"))
    EXPECT_EQ(JsonNumber::integer(text), std::nullopt) << text;
  EXPECT_EQ(JsonNumber::integer("1" + std::string(100'000, '0') + "e-100000"), 1);
}

/// Writes what was read.
void copy(JsonValue value, JsonWriter& writer) {
  if (value.isNull()) return writer.null();
  if (value.kind() == JsonKind::boolean) return writer.boolean(value.boolean());
  if (value.kind() == JsonKind::number) return writer.number(value.number());
  if (value.kind() == JsonKind::string) return writer.string(value.string());
  if (value.kind() == JsonKind::array) {
    writer.beginArray();
    for (const JsonValue element : value.array())
      copy(element, writer);
    return writer.endArray();
  }
  writer.beginObject();
  for (const JsonMember member : value.object()) {
    writer.key(member.key);
    copy(member.value, writer);
  }
  writer.endObject();
}

/// The text written again after reading, or its error.
std::string rewritten(std::string text) {
  try {
    const JsonDocument document(std::move(text));
    JsonWriter writer;
    copy(document.root(), writer);
    return writer.take();
  } catch (const DecodingError& error) {
    return error.what();
  }
}

TEST(Json, ReadsAndWritesValues) {
  const std::string zeros(500, '0');
  for (const auto& [text, expected] :
       cases<2>(R"_(
      ␠null => null ; [] => [] ; [true,false,[[]],{}] => [true,false,[[]],{}] ; [1,␠-2.5e1␍,␉0␊] => [1,-25,0]
      {"a":1,"":2,"a":3} => {"a":1,"":2,"a":3} ; {"a":{"b":[1,{"c":"d"}]},"e":""} => {"a":{"b":[1,{"c":"d"}]},"e":""}
      "\"\\\/\b\f\n\r\t" => "\"\\/\b\f\n\r\t" ; "\u0041\u00e9\u20AC\uD83D\uDE00" => "Aé€😀"
      ["é\n€","plain","x\u0000\u001fy","z"] => ["é\n€","plain","x\u0000\u001fy","z"]
      [12,"\u00334",56,"\n",[7,{"\u0038":9,"":"\t"}]] => [12,"34",56,"\n",[7,{"8":9,"":"\t"}]]
      1e17 => 1e+17 ; 9.9e-5 => 9.9e-05 ; 4.9406564584124654e-324 => 5e-324 ; 1.8e308 => The number is out of range.
      -1e2000000000 => The number is out of range. ; 0.1e310 => The number is out of range.
      1.7976931348623157e308 => 1.7976931348623157e+308 ; 0.)_" +
                zeros + "1e501 => 1 ; 1" + zeros + " => The number is out of range."))
    EXPECT_EQ(rewritten(text), expected) << text;

  std::string everyCharacter = "é\u2028😀";
  for (char c = 0; c >= 0; ++c)
    everyCharacter += c;
  JsonWriter writer;
  writer.string(everyCharacter);
  const std::string json = writer.take();
  EXPECT_EQ(JsonDocument(json).root().string(), everyCharacter);
  EXPECT_THROW(JsonWriter().number(HUGE_VAL), DocumentError);
}

bool isMalformed(const std::string& text) {
  return rewritten(text).starts_with("The JSON is malformed at byte ");
}

TEST(Json, Malformed) {
  // Structure, numbers, strings, lone surrogates; bytes that are not UTF-8.
  for (const std::string& text : words(
           R"_(
      nul tru [ ] { [1 [1, [1,] {"a"} {"a":} {"a":1,} {a:1} 'a' [1␠2] 1␠2 {}␠{} []x //␠c␊1 [1/**/] 1␀
      01 +1 - 1. .5 1e 1e+ 0x1 NaN Infinity -Infinity 1e99999999999
      " "a "\" "\x" "\u12" "\u12G4" "a␊b" "␉" "\uD800" "\uD800x" "\uD800\n" "\uD800\u0041" "\uDC00")_"
           " \"\x80\" \"\xC3\" \"\xC0\xAF\" \"\xED\xA0\x80\" \"\xF4\x90\x80\x80\" \"\xE2\x82\" {\"\xFF\":1}"))
    EXPECT_TRUE(isMalformed(text)) << text << " is read as " << rewritten(text);
  EXPECT_TRUE(isMalformed("") && isMalformed(" "));
  EXPECT_EQ(rewritten("[1]x"), "The JSON is malformed at byte 3: extra data.");

  const std::string text = R"({"a":[1.5e3,"x\u00e9\ud83d\ude00\\é€"],"b":{"c":null,"d":true}})";
  for (std::size_t size = 0; size <= text.size(); ++size)
    EXPECT_EQ(isMalformed(text.substr(0, size)), size < text.size()) << size;
}

TEST(Json, DepthIsBounded) {
  for (const auto& [opening, inside, closing] : cases<3>(R"([ | | ] ; {"a": | 1 | })")) {
    const std::string deepest = repeated(opening, 511) + inside + repeated(closing, 511);
    EXPECT_FALSE(isMalformed("[" + deepest + "]"));
    EXPECT_TRUE(isMalformed("[[" + deepest + "]]"));
  }
  EXPECT_TRUE(isMalformed(std::string(1'000'000, '[')));
}

/// The text encoded again after decoding, or the error.
template <typename Record>
std::string recoded(const std::string& json) {
  try {
    return toJson(fromJson<Record>(json));
  } catch (const DecodingError& error) {
    return error.what();
  }
}

/// Checks a record's form, given as members with spaces between them, those that may be absent after a "?":
/// it is encoded as it was, other members are required, and each has its type.
template <typename Record>
void expectForm(std::string_view form) {
  const std::vector<std::string> members = testing::words(form);
  const auto with = [&](std::size_t place, const std::string& replacement) {
    std::string json;
    for (std::size_t i = 0; i < members.size(); ++i) {
      const std::string& member = i == place ? replacement : members[i];
      if (!member.empty()) json.append(json.empty() ? "{" : ",").append(member, member[0] == '?' ? 1 : 0);
    }
    return json + "}";
  };
  const std::string whole = with(members.size(), "");
  EXPECT_EQ(recoded<Record>(whole), whole);
  for (std::size_t i = 0; i < members.size(); ++i) {
    const bool mayBeAbsent = members[i][0] == '?';
    const std::size_t start = mayBeAbsent ? 2 : 1;
    const std::string key = members[i].substr(start, members[i].find("\":") - start);
    const std::string without = with(i, "");
    EXPECT_EQ(recoded<Record>(without), mayBeAbsent ? without : "The key \"" + key + "\" is missing.");
    const std::string null = recoded<Record>(with(i, '"' + key + "\":null"));
    EXPECT_TRUE(mayBeAbsent ? null == without : null.starts_with(key + ": Expected ")) << null;
    EXPECT_TRUE(recoded<Record>(with(i, '"' + key + "\":[1]")).starts_with(key)) << key;
  }
}

TEST(RecordCoding, EveryRecordHasItsForm) {
  expectForm<WorksheetInspection>(R"("name":"S" "hidden":true ?"populatedRange":"A1:B2" "populatedCellCount":4
      "formulaCellCount":3 "formulasMissingCache":2 "hasHiddenRowsOrColumns":true "hasAutoFilter":false)");
  expectForm<WorkbookInspection>(
      R"("sourceName":"a.xlsx" "sourceSHA256":"00ff" "sheets":[] "dateSystem":"1904"
      "calculationMode":"auto" "warnings":["w"])");
  expectForm<SourceCell>(R"("address":"A1" "value":{"text":{"_0":"x"}} ?"formula":"B1&\"\""
      "usesCachedFormulaValue":true ?"numberFormat":"0.00" "hidden":true)");
  expectForm<SourceTable>(
      R"("sourceName":"a.xlsx" "sourceSHA256":"00ff" "sheetName":"S" "selectedRange":"A1:B2"
      "columns":["x","y"]
      "rows":[[],[{"address":"B2","value":{"missing":{}},"usesCachedFormulaValue":false,"hidden":false}]]
      "warnings":["w"] "headerUsesCachedFormulaValues":true)");
  expectForm<GeneratedDocument>(
      R"("data":"UEs=" "format":"pptx" "sourceSHA256":"00ff" "validation":)"
      R"({"structurallyValid":true,"sourceValuesVerified":true,"visuallyVerified":false,)"
      R"("validatorVersion":"v","warnings":[],"outputSHA256":"ab"})");
  expectForm<CleaningReport>(
      R"("sheets":[{"name":"S","cells":2,"formulas":1}]
      "dropped":[{"kind":"k","count":3,"parts":["p"]},{"kind":"k","count":1,"parts":[],"names":["n"],"sheets":[]}]
      "changed":[{"kind":"k","count":4,"code":"0","sheets":[{"sheet":0,"count":4}]},{"kind":"k","count":5}])");
}

TEST(RecordCoding, ListsAreBounded) {
  // A table is cut one element beyond what its rules accept; what is dropped must have the right shape, too.
  const std::string cell =
      R"({"address":"B2","value":{"missing":{}},"usesCachedFormulaValue":false,"hidden":false})";
  const auto listOf = [](const std::string& element, std::size_t count) {
    return "[" + element + repeated("," + element, count - 1) + "]";
  };
  const auto table = [](const std::string& columns, const std::string& rows, const std::string& warnings) {
    return R"({"sourceName":"a","sourceSHA256":"00","sheetName":"S","selectedRange":"A1","columns":)" +
           columns + R"(,"rows":)" + rows + R"(,"warnings":)" + warnings +
           R"(,"headerUsesCachedFormulaValues":true})";
  };
  const auto read = fromJson<SourceTable>(table(
      listOf(R"("x")", 1'100), "[" + listOf(cell, 1'100) + repeated(",[]", 300) + "]", listOf(R"("w")", 20)));
  EXPECT_EQ(read.columns.size(), 1'024U);
  EXPECT_EQ(read.rows.size(), 201U);
  EXPECT_EQ(read.rows.at(0).size(), 1'024U);
  EXPECT_EQ(read.warnings.size(), 17U);
  EXPECT_EQ(recoded<SourceTable>(table("[]", "[[]" + repeated(",[]", 298) + ",[7]]", "[]")),
            "rows[299][0]: Expected an object, found a number.");

  // A cleaning report's lists are refused instead.
  for (const auto& [report, element, last, place] : cases<4>(R"(
      {"sheets":[*],"dropped":[],"changed":[]} | {"name":"S","cells":2,"formulas":1} | 64 | sheets
      {"sheets":[],"dropped":[*],"changed":[]} | {"kind":"k","count":1,"parts":[]} | 100 | dropped
      {"sheets":[],"dropped":[],"changed":[*]} | {"kind":"k","count":1} | 250000 | changed
      {"sheets":[],"dropped":[{"kind":"k","count":1,"parts":[*]}],"changed":[]} | "p" | 512 | dropped[0].parts
      {"sheets":[],"dropped":[],"changed":[{"kind":"k","count":1,"sheets":[*]}]} | {"sheet":0,"count":1} | 64 | changed[0].sheets)")) {
    const std::string full = testing::replaced(report, "[*]", listOf(element, std::stoul(last)));
    EXPECT_EQ(recoded<CleaningReport>(full), full);
    const std::string beyond = testing::replaced(full, element, element + "," + element);
    EXPECT_EQ(recoded<CleaningReport>(beyond), place + "[" + last + "]: Too many elements.");
  }
}

TEST(RecordCoding, TheLastMemberOfAKeyCountsAndUnknownKeysDoNot) {
  EXPECT_EQ(fromJson<ChartSelection>(R"({"title":"T","unknown":[{"deep":null}],"valueColumn":1.0,)"
                                     R"("categoryColumn":7,"categoryColumn":2e0})"),
            (ChartSelection{2, 1, "T"}));
}

TEST(RecordCoding, CellValuesHaveOneKindAndItsPayload) {
  for (const auto& [value, error] : cases<2>(R"(
      {"text":{"_0":"a"}} => ; {"number":{"_0":"1.50"}} => ; {"boolean":{"_0":true}} => ; {"boolean":{"_0":false}} =>
      {"date":{"_0":"2024-02-29"}} => ; {"missing":{}} => ; {"error":{"_0":"#N/A"}} => ; {} => one
      {"text":{"_0":"a"},"missing":{},"text":{"_0":"a"}} => one ; {"Text":{"_0":"a"}} => : Unknown kind of cell value.
      {"text":"a"} => .text: Expected an object, found a string. ; {"text":{}} => .text: The key "_0" is missing.
      "text" => : Expected an object, found a string.)")) {
    const std::string json =
        R"({"address":"A1","value":)" + value + R"(,"usesCachedFormulaValue":true,"hidden":true})";
    const std::string refusal = error == "one" ? ": Invalid number of keys found, expected one." : error;
    EXPECT_EQ(recoded<SourceCell>(json), error.empty() ? json : "value" + refusal);
  }
}

TEST(JsonCoding, ErrorsNameThePlace) {
  EXPECT_EQ(recoded<std::vector<std::int64_t>>("[1,true]"), "[1]: Expected a number, found a boolean.");
  EXPECT_EQ(recoded<std::vector<std::int64_t>>("[0.5]"), "[0]: Expected an integer of at most 64 bits.");
  EXPECT_EQ(recoded<std::vector<std::vector<double>>>("[[],[1,1e400]]"),
            "[1][1]: The number is out of range.");
  EXPECT_EQ(recoded<ByteBuffer>("\"UEs\""), "Expected base64.");
  EXPECT_EQ(recoded<DocumentFormat>("\"docx\"") + recoded<DocumentFormat>("\"PPTX\""),
            "\"docx\"Unknown value.");
  // The path is cut to whole characters of 300 bytes, whether one key is too long or all of them together.
  const auto failure = [](const std::string& start, const std::string& end) {
    return rewritten(start + "1e400" + end);
  };
  const std::string message = "\u2026: The number is out of range.";
  EXPECT_EQ(failure(R"({"a":{")" + repeated("é", 500'000) + R"(":)", "}}"),
            "a." + repeated("é", 149) + message);
  EXPECT_EQ(failure(repeated(R"({"a":)", 500), std::string(500, '}')), repeated("a.", 150) + message);
}

}  // namespace
}  // namespace zelvo
