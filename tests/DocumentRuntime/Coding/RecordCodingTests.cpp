#include <gtest/gtest.h>

#include "DocumentRuntime/Coding/RecordCoding.hpp"

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

std::string without(std::string text, const std::string& piece) {
  const std::size_t at = text.find(piece);
  EXPECT_NE(at, std::string::npos) << piece;
  return text.erase(at, piece.size());
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
  const std::string count = "Invalid number of keys found, expected one.";
  const std::vector<std::pair<std::string, std::string>> rows = {
      {R"({})", count},
      {R"({"missing":{},"text":{"_0":"a"}})", count},
      {R"({"text":{"_0":"a"},"other":1})", count},
      {R"({"text":{"_0":"a"},"missing":{},"text":{"_0":"a"}})", count},
      {R"({"formula":{"_0":"a"}})", "Unknown kind of cell value."},
      {R"({"Text":{"_0":"a"}})", "Unknown kind of cell value."},
      {R"({"text":"a"})", "text: Expected an object, found a string."},
      {R"({"missing":null})", "missing: Expected an object, found null."},
      {R"({"text":{}})", "text: The key \"_0\" is missing."},
      {R"({"text":{"_0":null}})", "text._0: Expected a string, found null."},
      {R"({"number":{"_0":12}})", "number._0: Expected a string, found a number."},
      {R"({"boolean":{"_0":"true"}})", "boolean._0: Expected a boolean, found a string."},
      {R"({"boolean":{"_0":1}})", "boolean._0: Expected a boolean, found a number."},
      {R"("text")", "Expected an object, found a string."},
  };
  const std::string before = R"({"address":"A1","usesCachedFormulaValue":false,"hidden":false,"value":)";
  for (const auto& [value, expected] : rows) {
    const std::string error = errorOf<SourceCell>(before + value + "}");
    EXPECT_TRUE(error == "value: " + expected || error == "value." + expected) << value << " gives " << error;
  }
}

TEST(RecordCoding, EveryRequiredKeyIsRequired) {
  for (const std::string field : {R"("sheetName":"S",)", R"("range":"A1:B2",)", R"("firstRowIsHeader":true,)",
                                  R"("includeHiddenRows":false,)", R"(,"allowCachedFormulaValues":true)"}) {
    EXPECT_NE(errorOf<TableSelection>(without(selection, field)), "no error") << field;
  }
  for (const std::string field : {R"("address":"A1",)", R"("value":{"text":{"_0":"x"}},)",
                                  R"("usesCachedFormulaValue":true,)", R"(,"hidden":true)"}) {
    EXPECT_NE(errorOf<SourceCell>(without(cellA1, field)), "no error") << field;
  }
  for (const std::string field :
       {R"("populatedCellCount":4,)", R"("formulasMissingCache":2,)", R"(,"hasAutoFilter":false)"}) {
    EXPECT_NE(errorOf<WorksheetInspection>(without(sheet, field)), "no error") << field;
  }
  for (const std::string field : {R"("data":"UEs=",)", R"("format":"pptx",)", R"("warnings":[],)"}) {
    EXPECT_NE(errorOf<GeneratedDocument>(without(document, field)), "no error") << field;
  }
}

TEST(RecordCoding, WrongTypes) {
  EXPECT_EQ(errorOf<ChartSelection>(R"({"categoryColumn":1.5,"valueColumn":1,"title":"T"})"),
            "categoryColumn: Expected an integer of at most 64 bits.");
  EXPECT_EQ(errorOf<ChartSelection>(R"({"categoryColumn":"1","valueColumn":1,"title":"T"})"),
            "categoryColumn: Expected a number, found a string.");
  EXPECT_EQ(
      errorOf<GeneratedDocument>(R"({"data":"UEs=","format":"PPTX","sourceSHA256":"","validation":{}})"),
      "format: Unknown value.");
  EXPECT_EQ(errorOf<GeneratedDocument>(R"({"data":"UEs","format":"pptx","sourceSHA256":"","validation":{}})"),
            "data: Expected base64.");
  EXPECT_EQ(errorOf<SourceTable>(R"({"sourceName":"","sourceSHA256":"","sheetName":"","selectedRange":"",)"
                                 R"("columns":[],"rows":[[],[{"address":3}]]})"),
            "rows[1][0].address: Expected a string, found a number.");
}

}  // namespace
}  // namespace zelvo
