// Validation of mutated documents: an accepted document shows the expected table, by an independent reader,
// and has no part and no element that the authors do not write.

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Validation/EditedDocument.hpp"
#include "Support/GeneratedVocabulary.hpp"
#include "fuzz/DocumentOracle.hpp"
#include "fuzz/MemoryBound.hpp"
#include "fuzz/MutatesPackages.hpp"
#include "fuzz/Require.hpp"

namespace {

using zelvo::ByteView;
using zelvo::DocumentFormat;
using zelvo::PartMap;
using Rows = std::vector<std::vector<std::string>>;

const zelvo::SourceTable& expectedTable() {
  static const zelvo::SourceTable table = zelvo::testing::deckTable();
  return table;
}

const zelvo::ChartSelection& expectedChart() {
  static const zelvo::ChartSelection chart = *zelvo::testing::chartDeck().chart;
  return chart;
}

const Rows& expectedRows() {
  static const Rows expected = [] {
    Rows rows = {expectedTable().columns};
    for (const auto& row : expectedTable().rows) {
      auto& texts = rows.emplace_back();
      for (const auto& cell : row)
        texts.push_back(cell.displayText());
    }
    return rows;
  }();
  return expected;
}

bool isKnownPart(const std::string& name, DocumentFormat format) {
  static const auto namesOf = [](const zelvo::testing::EditedDocument& document) {
    std::set<std::string> names;
    for (const auto& part : document.package.parts)
      names.insert(part.name);
    return names;
  };
  static const std::set<std::string> word = namesOf(zelvo::testing::wordDocument());
  static const std::set<std::string> deck = namesOf(zelvo::testing::chartDeck());
  if (format == DocumentFormat::docx) return word.contains(name);
  return deck.contains(name) || name.starts_with("ppt/slides/slide") ||
         name.starts_with("ppt/slides/_rels/slide");
}

void requireVocabulary(const PartMap& parts) {
  static const std::set<std::string> vocabulary = zelvo::testing::generatedVocabulary();
  for (const auto& [name, bytes] : parts) {
    if (name.ends_with(".xlsx")) {
      requireVocabulary(zelvo::BoundedZIP::read(bytes.view()));
      continue;
    }
    for (const std::string& element : zelvo::fuzzing::elementNames(bytes.text()))
      ZELVO_REQUIRE(vocabulary.contains(element));
  }
}

Rows shownRows(const PartMap& parts, DocumentFormat format) {
  if (format == DocumentFormat::docx)
    return zelvo::fuzzing::cellTexts(parts.find("word/document.xml")->text());
  Rows rows;
  for (const std::string& name : zelvo::fuzzing::slideParts(parts)) {
    Rows slide = zelvo::fuzzing::cellTexts(parts.find(name)->text());
    const bool repeatsHeader = !rows.empty() && !slide.empty();
    if (repeatsHeader) ZELVO_REQUIRE(slide.front() == rows.front());
    rows.insert(rows.end(), slide.begin() + (repeatsHeader ? 1 : 0), slide.end());
  }
  return rows;
}

void examine(ByteView bytes, DocumentFormat format, const zelvo::ChartSelection* chart) {
  try {
    const auto limit = zelvo::fuzzing::documentMemory(bytes);
    const auto result = zelvo::validateGeneratedDocument(bytes, format, &expectedTable(), chart);
    ZELVO_REQUIRE(result.sourceValuesVerified && !result.visuallyVerified);
  } catch (const zelvo::DocumentError& error) {
    ZELVO_REQUIRE(!error.detail().empty());
    return;
  }
  const PartMap parts = zelvo::BoundedZIP::read(bytes);
  for (const auto& part : parts)
    ZELVO_REQUIRE(isKnownPart(part.name, format));
  requireVocabulary(parts);
  ZELVO_REQUIRE(shownRows(parts, format) == expectedRows());
  if (format == DocumentFormat::pptx) {
    ZELVO_REQUIRE(parts.contains("ppt/charts/chart1.xml") == (chart != nullptr));
    ZELVO_REQUIRE(parts.contains("ppt/embeddings/chart-data.xlsx") == (chart != nullptr));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  examine({data, size}, DocumentFormat::docx, nullptr);
  examine({data, size}, DocumentFormat::pptx, nullptr);
  examine({data, size}, DocumentFormat::pptx, &expectedChart());
  return 0;
}
