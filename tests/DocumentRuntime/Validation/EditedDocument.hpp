#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "DocumentRuntime/Authoring/DocumentAuthor.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/Validation/GeneratedDocumentValidation.hpp"
#include "Support/PackageBuilder.hpp"
#include "Support/SampleTable.hpp"
#include "Support/Texts.hpp"

namespace zelvo::testing {

inline PackageBuilder unpacked(ByteView bytes) {
  PackageBuilder package;
  for (const Part& part : BoundedZIP::read(bytes))
    package.part(part.name).text = part.bytes.text();
  return package;
}

/// A generated document as editable parts, with the expected table and chart.
struct EditedDocument {
  DocumentFormat format;
  PackageBuilder package;
  std::optional<SourceTable> table;
  std::optional<ChartSelection> chart = {};

  std::string& part(std::string_view name) { return package.part(name).text; }

  /// Renames the main part and its relationship.
  void renameMainPart(std::string_view name, std::string_view newName) {
    package.part(name).name = newName;
    replace(part("_rels/.rels"), name, newName);
  }

  DocumentValidation validate() const {
    return validateGeneratedDocument(package.bytes().view(), format, table ? &*table : nullptr,
                                     chart ? &*chart : nullptr);
  }
};

/// A table that takes two slides, its second column numbers.
inline SourceTable deckTable() {
  SourceTable table = tableOf(3, 12);
  for (std::size_t i = 0; i < table.rows.size(); ++i) {
    table.rows[i][1].value = SourceCellValue::number(std::to_string(i) + ".25");
    table.rows[i][1].numberFormat = "0.0";
  }
  return table;
}

inline EditedDocument wordDocument() {
  const SourceTable table = tableOf(3, 4);
  return {DocumentFormat::docx, unpacked(DocumentAuthor::docx(table, "Title").view()), table};
}

inline EditedDocument deck(const std::optional<ChartSelection>& chart = {}) {
  const SourceTable table = deckTable();
  return {DocumentFormat::pptx, unpacked(DocumentAuthor::pptx(table, "Title", chart).view()), table, chart};
}

inline EditedDocument chartDeck() {
  return deck(ChartSelection{.categoryColumn = 0, .valueColumn = 1, .title = "Chart"});
}

}  // namespace zelvo::testing
