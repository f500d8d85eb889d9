// Owns Coding/RecordCoding and Coding/JsonCoding: the JSON forms of all records.
#include <gtest/gtest.h>

#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "Support/Cases.hpp"
#include "Support/Texts.hpp"

namespace zelvo {
namespace {

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
/// it comes back as it was, other members are required, and each has its type.
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
  expectForm<TableSelection>(
      R"("sheetName":"S" "range":"A1:B2" "firstRowIsHeader":true "includeHiddenRows":false
      "allowCachedFormulaValues":true)");
  expectForm<ChartSelection>(R"("categoryColumn":0 "valueColumn":-9223372036854775808 "title":"T")");
  expectForm<SourceCell>(R"("address":"A1" "value":{"text":{"_0":"x"}} ?"formula":"B1&\"\""
      "usesCachedFormulaValue":true ?"numberFormat":"0.00" "hidden":true)");
  expectForm<SourceTable>(
      R"("sourceName":"a.xlsx" "sourceSHA256":"00ff" "sheetName":"S" "selectedRange":"A1:B2"
      "columns":["x","y"]
      "rows":[[],[{"address":"B2","value":{"missing":{}},"usesCachedFormulaValue":false,"hidden":false}]]
      "warnings":["w"] "headerUsesCachedFormulaValues":true)");
  expectForm<DocumentValidation>(
      R"("structurallyValid":true "sourceValuesVerified":true "visuallyVerified":false
      "validatorVersion":"v" "warnings":[] "outputSHA256":"ab")");
  expectForm<GeneratedDocument>(
      R"("data":"UEs=" "format":"pptx" "sourceSHA256":"00ff" "validation":)"
      R"({"structurallyValid":true,"sourceValuesVerified":true,"visuallyVerified":false,)"
      R"("validatorVersion":"v","warnings":[],"outputSHA256":"ab"})");
}

TEST(RecordCoding, ATableIsCutBeyondWhatItsRulesAccept) {
  const auto listOf = [](const std::string& element, std::size_t count) {
    return "[" + element + testing::repeated("," + element, count - 1) + "]";
  };
  const auto table = [](const std::string& columns, const std::string& rows, const std::string& warnings) {
    return R"({"sourceName":"a","sourceSHA256":"00","sheetName":"S","selectedRange":"A1","columns":)" +
           columns + R"(,"rows":)" + rows + R"(,"warnings":)" + warnings +
           R"(,"headerUsesCachedFormulaValues":true})";
  };
  const std::string cell =
      R"({"address":"B2","value":{"missing":{}},"usesCachedFormulaValue":false,"hidden":false})";
  const auto read = fromJson<SourceTable>(
      table(listOf(R"("x")", 1'100), "[" + listOf(cell, 1'100) + "]", listOf(R"("w")", 20)));
  EXPECT_EQ(read.columns.size(), 1'024U);
  EXPECT_EQ(read.rows.at(0).size(), 1'024U);
  EXPECT_EQ(read.warnings.size(), 17U);
  EXPECT_EQ(fromJson<SourceTable>(table("[]", listOf("[]", 300), "[]")).rows.size(), 201U);
  // What is dropped must have the right shape, too.
  EXPECT_EQ(recoded<SourceTable>(table("[]", "[[]" + testing::repeated(",[]", 298) + ",[7]]", "[]")),
            "rows[299][0]: Expected an object, found a number.");
}

TEST(RecordCoding, FieldsLandWhereTheyBelong) {
  // The last member of a key counts, unknown keys do not.
  EXPECT_EQ(fromJson<ChartSelection>(R"({"title":"T","unknown":[{"deep":null}],"valueColumn":1.0,)"
                                     R"("categoryColumn":7,"categoryColumn":2e0})"),
            (ChartSelection{2, 1, "T"}));
  EXPECT_EQ(
      fromJson<SourceCell>(R"({"address":"A1","value":{"text":1,"text":{"_0":7,"_0":"last","more":{}}},)"
                           R"("formula":"B1","usesCachedFormulaValue":true,"numberFormat":"0",)"
                           R"("numberFormat":null,"NumberFormat":1,"hidden":false})"),
      (SourceCell{"A1", SourceCellValue::text("last"), "B1", true, std::nullopt, false}));
}

TEST(RecordCoding, CellValuesHaveOneKindAndItsPayload) {
  const std::string before = R"({"address":"A1","value":)";
  const std::string behind = R"(,"usesCachedFormulaValue":true,"hidden":true})";
  const std::string one = ": Invalid number of keys found, expected one.";
  for (const auto& [value, error] : testing::cases<2>(R"(
      {"text":{"_0":"a"}} => ; {"number":{"_0":"1.50"}} => ; {"boolean":{"_0":true}} => ; {"boolean":{"_0":false}} =>
      {"date":{"_0":"2024-02-29"}} => ; {"missing":{}} => ; {"error":{"_0":"#N/A"}} => ; {} => one
      {"missing":{},"text":{"_0":"a"}} => one ; {"text":{"_0":"a"},"other":1} => one
      {"text":{"_0":"a"},"missing":{},"text":{"_0":"a"}} => one ; {"formula":{"_0":"a"}} => : Unknown kind of cell value.
      {"Text":{"_0":"a"}} => : Unknown kind of cell value. ; {"text":"a"} => .text: Expected an object, found a string.
      {"missing":null} => .missing: Expected an object, found null. ; {"text":{}} => .text: The key "_0" is missing.
      {"text":{"_0":null}} => .text._0: Expected a string, found null.
      {"number":{"_0":12}} => .number._0: Expected a string, found a number.
      {"boolean":{"_0":"true"}} => .boolean._0: Expected a boolean, found a string.
      {"boolean":{"_0":1}} => .boolean._0: Expected a boolean, found a number.
      "text" => : Expected an object, found a string.)")) {
    const std::string json = before + value + behind;
    EXPECT_EQ(recoded<SourceCell>(json), error.empty() ? json : "value" + (error == "one" ? one : error));
  }
}

TEST(JsonCoding, ErrorsNameThePlace) {
  EXPECT_EQ(recoded<std::vector<std::int64_t>>("[1,true]"), "[1]: Expected a number, found a boolean.");
  EXPECT_EQ(recoded<std::vector<std::int64_t>>("[0.5]"), "[0]: Expected an integer of at most 64 bits.");
  EXPECT_EQ(recoded<std::vector<double>>("[1,2.5,1e400]"), "[2]: The number is out of range.");
  EXPECT_EQ(recoded<std::vector<std::vector<double>>>("[[],[\"\"]]"),
            "[1][0]: Expected a number, found a string.");
  EXPECT_EQ(recoded<std::vector<std::string>>("{}"), "Expected an array, found an object.");
  EXPECT_EQ(recoded<ByteBuffer>("\"UEs\""), "Expected base64.");
  EXPECT_EQ(recoded<DocumentFormat>("\"docx\"") + recoded<DocumentFormat>("\"PPTX\""),
            "\"docx\"Unknown value.");
}

}  // namespace
}  // namespace zelvo
