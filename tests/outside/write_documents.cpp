// write_documents FOLDER: writes a set of documents and, beside each, NAME.json with what readers must find
// in it: {"rows": [[text, …], …], "categories": [text, …], "values": [text, …]}, the latter two empty without
// a chart.

#include <exception>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>
#include <utility>

#include "DocumentRuntime/Coding/JsonWriter.hpp"
#include "DocumentRuntime/Engine/DocumentEngine.hpp"
#include "Support/Cases.hpp"
#include "Support/SampleTable.hpp"

namespace {

using zelvo::ChartSelection;
using zelvo::GeneratedDocument;
using zelvo::JsonWriter;
using zelvo::SourceCellValue;
using zelvo::SourceTable;
using zelvo::testing::tableOf;

constexpr const char* title = "Quarterly <figures> & more";

using Texts = std::vector<std::string>;

void put(JsonWriter& json, const Texts& texts) {
  json.beginArray();
  for (const std::string& text : texts)
    json.string(text);
  json.endArray();
}

std::string expectations(const SourceTable& table, const std::optional<ChartSelection>& chart) {
  JsonWriter json;
  Texts categories;
  Texts values;
  json.beginObject();
  json.key("rows");
  json.beginArray();
  put(json, table.columns);
  for (const auto& row : table.rows) {
    Texts texts;
    for (const auto& cell : row)
      texts.push_back(cell.displayText());
    put(json, texts);
    if (!chart) continue;
    categories.push_back(texts[static_cast<std::size_t>(chart->categoryColumn)]);
    values.push_back(row[static_cast<std::size_t>(chart->valueColumn)].value.payload());
  }
  json.endArray();
  json.key("categories");
  put(json, categories);
  json.key("values");
  put(json, values);
  json.endObject();
  return json.take();
}

class Documents {
 public:
  explicit Documents(std::string folder) : folder_(std::move(folder)) {}

  void word(const std::string& name, const SourceTable& table) const {
    write(name + ".docx", zelvo::DocumentEngine::createDOCX(table, title), expectations(table, {}));
  }
  void deck(const std::string& name, const SourceTable& table,
            const std::optional<ChartSelection>& chart = {}) const {
    write(name + ".pptx", zelvo::DocumentEngine::createPPTX(table, title, chart), expectations(table, chart));
  }

 private:
  void write(const std::string& file, const GeneratedDocument& document, const std::string& expected) const {
    std::ofstream(folder_ + '/' + file, std::ios::binary) << document.data.text();
    std::ofstream(folder_ + '/' + file + ".json") << expected;
  }

  std::string folder_;
};

/// What markup, right-to-left scripts, scalars above the first plane and spaces make of a text.
SourceTable specialTable() {
  Texts texts = {"Straße, Ærø, e\u0301", "\u05E9\u05DC\u05D5\u05DD 12 \u05E9", "- – — − \u00AD"};
  for (const auto& [text] : zelvo::testing::cases<1>(R"(
      <a href="x">&amp;</a> ; 'quoted' "twice" ; ␠space at both ends␠ ; two  spaces   and three ; 東京 トウキョウ
      👩‍👩‍👧 🇫🇷 𝔘 ; _x0041_ %41 &#65; ; =1+1 ; ]]>)"))
    texts.push_back(text);
  SourceTable table = tableOf(3, 4);
  for (std::size_t i = 0; i < texts.size(); ++i)
    table.rows[i / 3][i % 3].value = SourceCellValue::text(texts[i]);
  table.columns[1] = "a < b & \"c\"";
  return table;
}

SourceTable figures(std::size_t rows) {
  SourceTable table = tableOf(3, rows);
  table.columns = {"Month & year", "Revenue <net>", "Note"};
  for (std::size_t i = 0; i < rows; ++i) {
    table.rows[i][0].value = SourceCellValue::text("Month " + std::to_string(i + 1));
    const auto amount = 1000 + 137 * static_cast<int>(i % 7) - 300 * static_cast<int>(i % 5);
    table.rows[i][1].value = SourceCellValue::number(std::to_string(amount) + ".125");
    table.rows[i][1].numberFormat = "\"$\"#,##0.00";
  }
  return table;
}

void writeAll(const Documents& documents) {
  const ChartSelection chart{.categoryColumn = 0, .valueColumn = 1, .title = "Revenue"};
  documents.word("small", zelvo::testing::sampleTable());
  documents.word("large", tableOf(8, 200));
  documents.word("special", specialTable());
  SourceTable lines = tableOf(1, 1);
  lines.rows[0][0].value = SourceCellValue::text("one\ntwo\tthree");
  documents.word("lines", lines);
  documents.word("figures", figures(60));
  documents.deck("small", zelvo::testing::sampleTable());
  documents.deck("large", tableOf(8, 110));
  documents.deck("special", specialTable());
  documents.deck("chart-of-one", figures(1), chart);
  documents.deck("chart", figures(30), chart);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: write_documents FOLDER\n";
    return 2;
  }
  try {
    writeAll(Documents(argv[1]));
  } catch (const std::exception& error) {
    std::cerr << "write_documents: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
