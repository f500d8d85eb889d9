#include <gtest/gtest.h>

#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "Support/Cases.hpp"
#include "Support/Texts.hpp"

namespace zelvo {
namespace {

template <typename Record>
std::string errorOf(const std::string& json) {
  try {
    fromJson<Record>(json);
  } catch (const DecodingError& error) {
    return error.what();
  }
  return "no error";
}

/// The text decodes to something that encodes to the same text.
template <typename Record>
void expectRoundTrip(const std::string& json) {
  EXPECT_EQ(toJson(fromJson<Record>(json)), json);
}

std::string without(const std::string& text, const std::string& piece) {
  return testing::replaced(text, piece, "");
}

const std::string cellA1 =
    R"({"address":"A1","value":{"text":{"_0":"x"}},"formula":"B1&\"\"","usesCachedFormulaValue":true,)"
    R"("numberFormat":"0.00","hidden":true})";
const std::string cellB2 =
    R"({"address":"B2","value":{"missing":{}},"usesCachedFormulaValue":false,"hidden":false})";
const std::string table =
    R"({"sourceName":"a.xlsx","sourceSHA256":"00ff","sheetName":"S","selectedRange":"A1:B2",)"
    R"("columns":["x","y"],"rows":[[],[)" +
    cellA1 + "," + cellB2 + R"(]],"warnings":["w"],"headerUsesCachedFormulaValues":true})";
const std::string sheet =
    R"({"name":"S","hidden":true,"populatedRange":"A1:B2","populatedCellCount":4,"formulaCellCount":3,)"
    R"("formulasMissingCache":2,"hasHiddenRowsOrColumns":true,"hasAutoFilter":false})";
const std::string selection =
    R"({"sheetName":"S","range":"A1:B2","firstRowIsHeader":true,"includeHiddenRows":false,)"
    R"("allowCachedFormulaValues":true})";
const std::string document =
    R"({"data":"UEs=","format":"pptx","sourceSHA256":"00ff","validation":{"structurallyValid":true,)"
    R"("sourceValuesVerified":true,"visuallyVerified":false,"validatorVersion":"v","warnings":[],"outputSHA256":"ab"}})";

TEST(RecordCoding, EveryRecordRoundTripsWithItsKeysInOrder) {
  expectRoundTrip<SourceTable>(table);
  expectRoundTrip<WorkbookInspection>(R"({"sourceName":"a.xlsx","sourceSHA256":"00ff","sheets":[)" + sheet +
                                      "," + without(sheet, R"("populatedRange":"A1:B2",)") +
                                      R"(],"dateSystem":"1904","calculationMode":"auto","warnings":["w"]})");
  expectRoundTrip<TableSelection>(selection);
  expectRoundTrip<ChartSelection>(R"({"categoryColumn":0,"valueColumn":-9223372036854775808,"title":"T"})");
  expectRoundTrip<GeneratedDocument>(document);
  for (const std::string payload :
       {R"("text":{"_0":"a"})", R"("number":{"_0":"1.50"})", R"("boolean":{"_0":true})",
        R"("boolean":{"_0":false})", R"("date":{"_0":"2024-02-29"})", R"("missing":{})",
        R"("error":{"_0":"#N/A"})"}) {
    expectRoundTrip<SourceCell>(R"({"address":"A1","value":{)" + payload +
                                R"(},"usesCachedFormulaValue":false,"hidden":false})");
  }
}

TEST(RecordCoding, FieldsLandWhereTheyBelong) {
  const auto read = fromJson<SourceTable>(table);
  EXPECT_EQ(read.sheetName, "S");
  EXPECT_EQ(read.selectedRange, "A1:B2");
  ASSERT_EQ(read.rows.size(), 2U);
  const SourceCell expected = {"A1", SourceCellValue::text("x"), "B1&\"\"", true, "0.00", true};
  EXPECT_EQ(read.rows[1][0], expected);
  EXPECT_EQ(read.rows[1][1].value, SourceCellValue::missing());
}

TEST(RecordCoding, ATableIsCutBehindWhatItsRulesRefuse) {
  const auto listOf = [](const std::string& element, std::size_t count) {
    return "[" + element + testing::repeated("," + element, count - 1) + "]";
  };
  const auto columns = testing::replaced(table, R"(["x","y"])", listOf(R"("x")", 1'100));
  const auto cells = testing::replaced(columns, "[" + cellA1 + "," + cellB2 + "]", listOf(cellB2, 1'100));
  const auto read = fromJson<SourceTable>(testing::replaced(cells, R"(["w"])", listOf(R"("w")", 20)));
  EXPECT_EQ(read.columns.size(), 1'024U);
  EXPECT_EQ(read.rows.at(1).size(), 1'024U);
  EXPECT_EQ(read.warnings.size(), 17U);

  const auto withRows = [](const std::string& rows) {
    return testing::replaced(table, "[[],[" + cellA1 + "," + cellB2 + "]]", rows);
  };
  const std::string rows = listOf("[]", 300);
  EXPECT_EQ(fromJson<SourceTable>(withRows(rows)).rows.size(), 201U);
  // What is dropped must have the right shape, too.
  EXPECT_EQ(errorOf<SourceTable>(withRows(testing::replaced(rows, "[]]", "[7]]"))),
            "rows[299][0]: Expected an object, found a number.");
}

TEST(RecordCoding, LenientWhereItMayBe) {
  const std::string reordered =
      R"({"title":"T","unknown":[{"deep":null}],"valueColumn":1.0,"categoryColumn":7,)"
      R"("categoryColumn":2e0})";
  EXPECT_EQ(fromJson<ChartSelection>(reordered), (ChartSelection{2, 1, "T"}));
  const auto cell = fromJson<SourceCell>(
      R"({"hidden":false,"formula":null,"numberFormat":null,"usesCachedFormulaValue":false,)"
      R"("value":{"text":1,"text":{"_0":7,"_0":"last","more":{}}},"address":"A1"})");
  EXPECT_EQ(cell, (SourceCell{"A1", SourceCellValue::text("last"), {}, false, {}, false}));
}

TEST(RecordCoding, CellValuesHaveOneKindAndItsPayload) {
  const std::string before = R"({"address":"A1","usesCachedFormulaValue":false,"hidden":false,"value":)";
  for (const auto& [value, expected] : testing::cases<2>(R"(
      {} => value: Invalid number of keys found, expected one.
      {"missing":{},"text":{"_0":"a"}} => value: Invalid number of keys found, expected one.
      {"text":{"_0":"a"},"other":1} => value: Invalid number of keys found, expected one.
      {"text":{"_0":"a"},"missing":{},"text":{"_0":"a"}} => value: Invalid number of keys found, expected one.
      {"formula":{"_0":"a"}} => value: Unknown kind of cell value.
      {"Text":{"_0":"a"}} => value: Unknown kind of cell value.
      {"text":"a"} => value.text: Expected an object, found a string.
      {"missing":null} => value.missing: Expected an object, found null.
      {"text":{}} => value.text: The key "_0" is missing.
      {"text":{"_0":null}} => value.text._0: Expected a string, found null.
      {"number":{"_0":12}} => value.number._0: Expected a string, found a number.
      {"boolean":{"_0":"true"}} => value.boolean._0: Expected a boolean, found a string.
      {"boolean":{"_0":1}} => value.boolean._0: Expected a boolean, found a number.
      "text" => value: Expected an object, found a string.)"))
    EXPECT_EQ(errorOf<SourceCell>(before + value + "}"), expected);
}

template <typename Record>
void expectRequired(const std::string& record, const char* fields) {
  for (const std::string& field : testing::words(fields))
    EXPECT_NE(errorOf<Record>(without(record, field)), "no error") << field;
}

TEST(RecordCoding, EveryRequiredKeyIsRequired) {
  expectRequired<TableSelection>(selection, R"("sheetName":"S", "range":"A1:B2", "firstRowIsHeader":true,
      "includeHiddenRows":false, ,"allowCachedFormulaValues":true)");
  expectRequired<SourceCell>(cellA1, R"("address":"A1", "value":{"text":{"_0":"x"}},
      "usesCachedFormulaValue":true, ,"hidden":true)");
  expectRequired<WorksheetInspection>(sheet, R"("populatedCellCount":4, "formulasMissingCache":2,
      ,"hasAutoFilter":false)");
  expectRequired<GeneratedDocument>(document, R"("data":"UEs=", "format":"pptx", "warnings":[],)");
}

TEST(RecordCoding, WrongTypes) {
  const std::string head = R"({"sourceSHA256":"","validation":{},)";
  EXPECT_EQ(errorOf<ChartSelection>(R"({"categoryColumn":1.5,"valueColumn":1,"title":"T"})"),
            "categoryColumn: Expected an integer of at most 64 bits.");
  EXPECT_EQ(errorOf<ChartSelection>(R"({"categoryColumn":"1","valueColumn":1,"title":"T"})"),
            "categoryColumn: Expected a number, found a string.");
  EXPECT_EQ(errorOf<GeneratedDocument>(head + R"("data":"UEs=","format":"PPTX"})"), "format: Unknown value.");
  EXPECT_EQ(errorOf<GeneratedDocument>(head + R"("data":"UEs","format":"pptx"})"), "data: Expected base64.");
  EXPECT_EQ(errorOf<SourceTable>(testing::replaced(table, R"("address":"A1")", R"("address":3)")),
            "rows[1][0].address: Expected a string, found a number.");
}

}  // namespace
}  // namespace zelvo
